#include "corvane/store/keyword_list.hpp"

#include "corvane/text/characters.hpp"

#include <algorithm>
#include <set>

namespace corvane::store {

std::vector<KeywordSpan> splitKeywords(std::string_view list) {
  std::vector<KeywordSpan> keywords;
  keywords.reserve(static_cast<std::size_t>(std::ranges::count(list, ',')) + 1);
  std::size_t start = 0;
  while (start <= list.size()) {
    const auto comma = std::min(list.find(',', start), list.size());
    const std::string_view raw = list.substr(start, comma - start);
    const std::string_view keyword = trimmed(raw);
    if (!keyword.empty()) {
      keywords.push_back({start + static_cast<std::size_t>(keyword.data() - raw.data()), keyword});
    }
    start = comma + 1;
  }
  return keywords;
}

std::string withoutSpacesAroundCommas(std::string_view list) {
  std::string result;
  std::size_t start = 0;
  for (;;) {
    const auto comma = list.find(',', start);
    std::string_view part = list.substr(start, comma == std::string_view::npos ? std::string_view::npos : comma - start);
    result += trimmed(part);
    if (comma == std::string_view::npos) break;
    result += ',';
    start = comma + 1;
  }
  return std::string(trimmed(result));
}

std::string withoutDuplicateKeywords(std::string_view list) {
  std::string result;
  std::set<std::string> seen;
  std::size_t copiedUpTo = 0;  // bytes of `list` already handled
  for (const auto& keyword : splitKeywords(list)) {
    const std::size_t end = keyword.offset + keyword.text.size();
    // A duplicate goes with the comma and spaces before it: "a, b, A" becomes "a, b".
    if (seen.insert(lowercased(keyword.text)).second) result.append(list.substr(copiedUpTo, end - copiedUpTo));
    copiedUpTo = end;
  }
  result.append(list.substr(copiedUpTo));
  return result;
}

std::string trimToLimit(std::string_view text, std::int64_t limit) {
  return std::string(
      trimmed(prefixCharacters(trimmed(text), static_cast<std::size_t>(std::max<std::int64_t>(limit, 0)))));
}

std::optional<std::string> trimKeywordsToLimit(std::string_view text, std::int64_t limit) {
  std::string cut = trimToLimit(text, limit);
  // `cut` is a prefix of the trimmed text; it ends between keywords when a comma or
  // nothing follows it, and otherwise goes back to the comma before the keyword it cut.
  const std::string_view rest = trimmed(text).substr(cut.size());
  if (!trimmed(rest).empty() && !trimmed(rest).starts_with(',')) {
    const auto comma = cut.rfind(',');
    cut.resize(comma == std::string::npos ? 0 : comma);
  }
  // No comma or white space dangles at the end ("notes,lists, " is "notes,lists"). `cut`
  // starts with no white space, so trimming only shortens it.
  for (;;) {
    const std::size_t kept = trimmed(cut).size();
    const bool comma = kept > 0 && cut[kept - 1] == ',';
    cut.resize(comma ? kept - 1 : kept);
    if (!comma) break;
  }
  if (splitKeywords(cut).empty()) return std::nullopt;
  return cut;
}

}  // namespace corvane::store

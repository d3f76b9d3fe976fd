#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::store {

/// One keyword of a comma-separated list: its text without surrounding white space and
/// where that text starts in the list, in bytes.
struct KeywordSpan {
  std::size_t offset;
  std::string_view text;
};

/// The non-empty keywords of `list`, split at commas and trimmed of white space, in order.
std::vector<KeywordSpan> splitKeywords(std::string_view list);

/// `list` without the white space next to its commas ("a , b" becomes "a,b"), and trimmed.
std::string withoutSpacesAroundCommas(std::string_view list);

/// `list` without the keywords that repeat an earlier one in any letter case; each dropped
/// keyword takes its comma with it, so the rest of the list is kept as written.
std::string withoutDuplicateKeywords(std::string_view list);

/// `text` trimmed of surrounding white space and cut to at most `limit` characters, never
/// inside a character, without white space left dangling at the cut.
std::string trimToLimit(std::string_view text, std::int64_t limit);

/// A keyword list trimmed like `trimToLimit`, but cut after the last whole keyword that
/// fits, with no comma left at the end. Nothing when not even the first keyword fits: a
/// keyword is never cut in half, so such a list is left for its owner to shorten.
std::optional<std::string> trimKeywordsToLimit(std::string_view text, std::int64_t limit);

}  // namespace corvane::store

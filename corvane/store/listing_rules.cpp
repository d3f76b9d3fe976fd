#include "corvane/store/listing_rules.hpp"

#include "corvane/store/closest_match.hpp"
#include "corvane/store/keyword_list.hpp"
#include "corvane/store/store_facts.hpp"
#include "corvane/text/characters.hpp"

#include <fmt/format.h>
#include <utf8proc.h>
#include <boost/url/parse.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <mutex>
#include <utility>

namespace corvane::store {
namespace {

using Action = ActionGuidance::Action;
using ActionType = Action::ActionType;
using DisplayStyle = DisplayBehavior::DisplayStyle;
using DisplayTiming = DisplayBehavior::DisplayTiming;

// The word-list families and the content rule each feeds.
constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kContentFamilies = {{
    {"other-platform", "content.other-platform"},
    {"placeholder", "content.placeholder"},
    {"future-feature", "content.future-feature"},
    {"profanity", "content.profanity"},
}};

std::string plural(std::int64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

// A label inside a sentence: "App name" reads "app name", but "URL" stays "URL".
std::string inSentence(std::string_view label) {
  std::string text(label);
  if (text.size() > 1 && text[0] >= 'A' && text[0] <= 'Z' && !(text[1] >= 'A' && text[1] <= 'Z')) {
    text[0] = static_cast<char>(text[0] - 'A' + 'a');
  }
  return text;
}

std::string fileNameOf(const std::string& file) {
  const auto slash = file.rfind('/');
  return slash == std::string::npos ? file : file.substr(slash + 1);
}

ActionGuidance manual(std::string title, std::string description, std::vector<std::string> steps,
                      std::string estimatedTime = "1-2 minutes") {
  return ActionGuidance{
      .primaryAction = Action{.title = std::move(title),
                              .description = std::move(description),
                              .type = ActionType::manual(std::move(steps))},
      .alternativeActions = {},
      .helpURL = std::nullopt,
      .estimatedTime = std::move(estimatedTime),
  };
}

// The fix itself is `ListingFinding::fixedText`: whoever applies it knows the entity, the
// verdict does not, so the handler has nothing to do.
ActionGuidance autoFix(std::string title, std::string description, Action alternative) {
  return ActionGuidance{
      .primaryAction =
          Action{.title = std::move(title), .description = std::move(description), .type = ActionType::autoFix([] {})},
      .alternativeActions = {std::move(alternative)},
      .helpURL = std::nullopt,
      .estimatedTime = "< 1 minute",
  };
}

// Whether `address` holds white space, a control character or an invisible formatting one
// (a no-break or zero-width space, a direction override) anywhere: none belongs in an address,
// and the invisible ones would send people somewhere other than it seems.
bool hasSpaceOrControl(std::string_view address) {
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(address.data());
  for (std::size_t at = 0; at < address.size();) {
    // In ASCII, which addresses mostly are, white space and control characters are the
    // bytes up to ' ' and DEL.
    if (bytes[at] < 0x80) {
      if (bytes[at] <= ' ' || bytes[at] == 0x7F) return true;
      ++at;
      continue;
    }
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(bytes + at, static_cast<utf8proc_ssize_t>(address.size() - at), &codePoint);
    if (length <= 0) return true;  // not UTF-8: the reader refuses such files before rules run
    at += static_cast<std::size_t>(length);
    const auto category = utf8proc_category(codePoint);
    if (isWhitespaceOrNewline(static_cast<char32_t>(codePoint)) || category == UTF8PROC_CATEGORY_CC ||
        category == UTF8PROC_CATEGORY_CF || category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
        category == UTF8PROC_CATEGORY_ZP) {
      return true;
    }
  }
  return false;
}

// Whether the URI names a host: an IP address, or a name of dot-separated labels of
// letters, digits, hyphens and underscores (a final dot allowed). A URI may leave the host
// empty or percent-encode it, but no browser reaches such an address.
bool isLookupHost(const boost::urls::url_view& url) {
  switch (url.host_type()) {
    case boost::urls::host_type::ipv4:
    case boost::urls::host_type::ipv6:
      return true;
    case boost::urls::host_type::name:
      break;
    default:
      return false;
  }
  std::string_view host = url.encoded_host();
  if (host.ends_with('.')) host.remove_suffix(1);
  if (host.empty()) return false;
  std::size_t label = 0;
  for (const char c : host) {
    if (c == '.') {
      if (label == 0) return false;
      label = 0;
    } else if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_') {
      ++label;
    } else {
      return false;
    }
  }
  return label > 0;
}

// Where the (count + 1)th character of `text` starts, counting from its first character
// that is not white space: the first character over a limit.
std::size_t offsetAfterCharacters(std::string_view text, std::int64_t count) {
  const std::string_view inner = trimmed(text);
  const std::size_t start = static_cast<std::size_t>(inner.data() - text.data());
  return start + prefixCharacters(inner, static_cast<std::size_t>(std::max<std::int64_t>(count, 0))).size();
}

// Whether `text` (trimmed of surrounding white space) has more than `limit` characters.
// A character takes at least one code point, and a code point at least one byte, so most
// texts are let through by those cheap counts before the grapheme rules are applied.
bool longerThan(std::string_view text, std::int64_t limit) {
  if (std::cmp_less_equal(text.size(), limit)) return false;
  text = trimmed(text);
  // An invalid byte is a character of its own, so code points say nothing then.
  if (const auto codePoints = validCodePointCount(text); codePoints && std::cmp_less_equal(*codePoints, limit)) {
    return false;
  }
  return std::cmp_greater(characterCount(text), limit);
}

bool isAsciiDigit(char c) {
  return c >= '0' && c <= '9';
}

// The year a copyright line starts with, after an optional "©", "(c)" or "Copyright"; the
// last year of a range ("2019-2026"). Nothing when it does not start with a year.
std::optional<int> copyrightYear(std::string_view text) {
  text = trimmed(text);
  for (const std::string_view prefix : {"\u00A9", "(c)", "(C)", "Copyright", "copyright", "COPYRIGHT"}) {
    if (text.starts_with(prefix)) text = trimmed(text.substr(prefix.size()));
  }
  auto readYear = [](std::string_view from) -> std::optional<int> {
    if (from.size() < 4 || !std::all_of(from.begin(), from.begin() + 4, isAsciiDigit)) return std::nullopt;
    if (from.size() > 4 && isAsciiDigit(from[4])) return std::nullopt;
    int year = 0;
    std::from_chars(from.data(), from.data() + 4, year);
    return year;
  };
  auto year = readYear(text);
  if (!year) return std::nullopt;
  std::string_view rest = trimmed(text.substr(4));
  for (const std::string_view dash : {"-", "\u2013", "\u2014"}) {
    if (!rest.starts_with(dash)) continue;
    if (auto last = readYear(trimmed(rest.substr(dash.size())))) year = last;
  }
  return year;
}

// A plausible phone number: digits with the usual separators, at least six digits.
bool looksLikePhoneNumber(std::string_view text) {
  int digits = 0;
  for (const char c : text) {
    if (isAsciiDigit(c)) {
      ++digits;
    } else if (std::string_view(" +-()./").find(c) == std::string_view::npos) {
      return false;
    }
  }
  return digits >= 6;
}

// local@domain.tld, with no white space, one '@' and a dot inside the domain.
bool looksLikeEmailAddress(std::string_view text) {
  const auto at = text.find('@');
  if (at == std::string_view::npos || at == 0 || text.find('@', at + 1) != std::string_view::npos) return false;
  const std::string_view domain = text.substr(at + 1);
  const auto dot = domain.rfind('.');
  if (dot == std::string_view::npos || dot == 0 || dot + 1 >= domain.size()) return false;
  return std::ranges::none_of(text, [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == 0x7F; });
}

std::string hostOfEmail(std::string_view address) {
  return lowercased(address.substr(address.rfind('@') + 1));
}

// Whether the character (one grapheme cluster) is an emoji: it holds a pictographic code
// point, a flag's regional indicator or a keycap. The copyright, registered and trade mark
// signs are pictographic by Unicode's data but belong in a title.
bool isEmojiCharacter(std::string_view character) {
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(character.data());
  for (std::size_t at = 0; at < character.size();) {
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(bytes + at, static_cast<utf8proc_ssize_t>(character.size() - at), &codePoint);
    if (length <= 0) return false;
    at += static_cast<std::size_t>(length);
    if (codePoint == 0xA9 || codePoint == 0xAE || codePoint == 0x2122) continue;
    const auto boundary = utf8proc_get_property(codePoint)->boundclass;
    if (boundary == UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC || boundary == UTF8PROC_BOUNDCLASS_REGIONAL_INDICATOR ||
        codePoint == 0x20E3) {
      return true;
    }
  }
  return false;
}

bool isAsciiAlnum(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// Whether `text` is written in capitals: once the brand names written so are left out, it
// has more than three letters with a letter case and none in lower case. Up to three
// ("BBC", "TV") read as an abbreviation, not as shouting; scripts without case never count.
bool isAllCapitals(std::string_view text, const std::vector<std::string>& brands) {
  std::string rest(text);
  for (const auto& brand : brands) {
    if (brand.empty()) continue;
    std::string without;
    std::size_t from = 0;
    for (auto at = rest.find(brand); at != std::string::npos; at = rest.find(brand, from)) {
      without.append(rest, from, at - from).append(1, ' ');
      from = at + brand.size();
    }
    without.append(rest, from);
    rest = std::move(without);
  }
  const auto* bytes = reinterpret_cast<const utf8proc_uint8_t*>(rest.data());
  int capitals = 0;
  for (std::size_t at = 0; at < rest.size();) {
    utf8proc_int32_t codePoint = 0;
    const auto length = utf8proc_iterate(bytes + at, static_cast<utf8proc_ssize_t>(rest.size() - at), &codePoint);
    if (length <= 0) return false;
    at += static_cast<std::size_t>(length);
    const auto category = utf8proc_category(codePoint);
    if (category == UTF8PROC_CATEGORY_LL) return false;
    if (category == UTF8PROC_CATEGORY_LU || category == UTF8PROC_CATEGORY_LT) ++capitals;
  }
  return capitals > 3;
}

}  // namespace

ValidationResult listingVerdict(RuleLevel level, std::string message, std::string reason, ActionGuidance guidance) {
  switch (level) {
    case RuleLevel::blocker: {
      auto impact = BusinessImpact::blocker(message);
      return ValidationResult(
          false, ValidationSeverity::critical, std::move(message), std::nullopt, std::move(reason), std::move(impact),
          std::move(guidance),
          DisplayBehavior{.timing = DisplayTiming::immediate(), .priority = 1000, .style = DisplayStyle::critical});
    }
    case RuleLevel::rejectionRisk:
      return ValidationResult(
          false, ValidationSeverity::error, std::move(message), std::nullopt, std::move(reason),
          BusinessImpact::rejectionRisk(BusinessImpact::RejectionSeverity::medium), std::move(guidance),
          DisplayBehavior{.timing = DisplayTiming::onInteraction(), .priority = 800, .style = DisplayStyle::error});
    case RuleLevel::optimization:
      return ValidationResult(
          true, ValidationSeverity::warning, std::move(message), std::nullopt, reason,
          BusinessImpact::suboptimal(reason), std::move(guidance),
          DisplayBehavior{.timing = DisplayTiming::onInteraction(), .priority = 500, .style = DisplayStyle::warning});
    case RuleLevel::opportunity:
      break;
  }
  return ValidationResult(
      true, ValidationSeverity::info, std::move(message), std::nullopt, reason, BusinessImpact::opportunity(reason),
      std::move(guidance),
      DisplayBehavior{.timing = DisplayTiming::onFocus(), .priority = 100, .style = DisplayStyle::info});
}

// The compiled word lists of one set of rules: the content families that are on, the
// configured forbidden words, the claim family and the allow-list.
struct CompiledWordLists {
  PhraseMatcher content;
  std::vector<std::string_view> contentRules;  // the rule of each of content's phrases
  PhraseMatcher claims;                        // the claim family, for name, subtitle and keywords only
  PhraseMatcher titleClaims;                   // the title-claim family, for Play's title only
  PhraseMatcher allowed;
};

namespace {

// Compiled word lists kept for the whole process: each check, and each folder an editor
// opens, would otherwise compile the same lists again. Keyed as RuleCache's are, by
// everything that decides the lists, the facts by their identity (an address can be
// reused by facts loaded later). Bounded, as configurations change under an editor.
class ProcessWordLists {
 public:
  std::shared_ptr<const CompiledWordLists> find(const std::string& key) {
    const std::scoped_lock lock(mutex_);
    const auto found = lists_.find(key);
    return found == lists_.end() ? nullptr : found->second;
  }

  void keep(const std::string& key, std::shared_ptr<const CompiledWordLists> lists) {
    const std::scoped_lock lock(mutex_);
    if (lists_.size() >= kMaxEntries) lists_.clear();
    lists_.emplace(key, std::move(lists));
  }

 private:
  static constexpr std::size_t kMaxEntries = 256;
  std::mutex mutex_;
  std::unordered_map<std::string, std::shared_ptr<const CompiledWordLists>> lists_;
};

ProcessWordLists& processWordLists() {
  static ProcessWordLists lists;
  return lists;
}

}  // namespace

RuleCache::RuleCache() = default;
RuleCache::~RuleCache() = default;

std::shared_ptr<const std::vector<RuleInfo>> RuleCache::catalogFor(const StoreFacts& facts) {
  if (facts_ != &facts || !catalog_) {
    catalog_ = std::make_shared<const std::vector<RuleInfo>>(ruleCatalog(facts));
    facts_ = &facts;
  }
  return catalog_;
}

ListingRules::~ListingRules() = default;

ListingRules::ListingRules(const StoreFacts& facts, const ListingConfiguration& configuration, std::string locale,
                           RuleContext context, RuleCache* cache)
    : facts_(facts),
      configuration_(configuration),
      locale_(std::move(locale)),
      context_(context),
      catalogShared_(cache == nullptr ? std::make_shared<const std::vector<RuleInfo>>(ruleCatalog(facts))
                                      : cache->catalogFor(facts)),
      catalog_(*catalogShared_) {
  if (configuration_.firstVersion) context_.firstVersion = *configuration_.firstVersion;
  if (locale_.empty()) {
    words_ = std::make_shared<const CompiledWordLists>();
    return;
  }  // the shared files hold no store text

  // The family lists depend on the language only; what else decides the words goes into
  // the key, so that two locales share lists exactly when they would compile the same.
  const auto settings = configuration_.wordsFor(locale_);
  std::string key = fmt::format("{}\n{}\n", facts_.identity(), facts_.wordListLanguage(locale_));
  for (const auto& [family, rule] : kContentFamilies) key += levelOf(rule) ? '1' : '0';
  key += levelOf("content.forbidden") ? '1' : '0';
  key += levelOf("content.claim") ? '1' : '0';
  key += levelOf("title.claim") ? '1' : '0';
  for (const auto* list : {&settings.forbidden, &settings.allowed}) {
    key += '\n';
    for (const auto& word : *list) key.append(word).append(1, '\0');
  }
  if (cache != nullptr) {
    if (const auto found = cache->wordLists_.find(key); found != cache->wordLists_.end()) {
      words_ = found->second;
      return;
    }
    if (auto kept = processWordLists().find(key)) {
      words_ = kept;
      cache->wordLists_.emplace(std::move(key), std::move(kept));
      return;
    }
  }

  auto compiled = std::make_shared<CompiledWordLists>();
  auto addContent = [&](const auto& words, std::string_view rule) {
    for (const auto& word : words) {
      if (compiled->content.add(word)) compiled->contentRules.emplace_back(rule);
    }
  };
  for (const auto& [family, rule] : kContentFamilies) {
    if (levelOf(rule)) addContent(facts_.words(family, locale_), rule);
  }
  if (levelOf("content.forbidden")) addContent(settings.forbidden, "content.forbidden");
  if (levelOf("content.claim")) {
    for (const auto& word : facts_.words("claim", locale_)) compiled->claims.add(word);
  }
  if (levelOf("title.claim")) {
    for (const auto& word : facts_.words("title-claim", locale_)) compiled->titleClaims.add(word);
  }
  for (const auto& word : settings.allowed) compiled->allowed.add(word);
  words_ = compiled;
  if (cache != nullptr) {
    processWordLists().keep(key, compiled);
    cache->wordLists_.emplace(std::move(key), std::move(compiled));
  }
}

std::optional<RuleLevel> ListingRules::levelOf(std::string_view rule) const {
  const RuleInfo* info = findRule(catalog_, rule);
  if (info == nullptr) return std::nullopt;
  return configuration_.levelOf(rule, locale_, info->defaultLevel);
}

ListingFinding ListingRules::finding(std::string_view rule, RuleLevel level, std::optional<ListingField> field,
                                     const std::string& file, std::optional<TextPosition> position,
                                     ValidationResult verdict, std::optional<std::string> fixedText) const {
  return ListingFinding{.rule = std::string(rule),
                        .level = level,
                        .field = field,
                        .file = file,
                        .position = position,
                        .verdict = std::move(verdict),
                        .fixedText = std::move(fixedText)};
}

std::vector<ListingFinding> ListingRules::judge(ListingField field, std::string_view text,
                                                const std::string& file) const {
  std::vector<ListingFinding> out;
  judgeRequired(field, text, file, out);
  if (trimmed(text).empty()) {
    judgeMissingOptional(field, text, file, out);
    return out;
  }
  judgeLength(field, text, file, out);
  switch (fieldKind(field)) {
    case FieldKind::keywords:
      judgeKeywords(text, file, out);
      break;
    case FieldKind::url:
      judgeUrl(field, text, file, out);
      break;
    case FieldKind::copyright:
      judgeCopyright(text, file, out);
      break;
    case FieldKind::category:
      judgeCategory(field, text, file, out);
      break;
    case FieldKind::phone:
    case FieldKind::email:
      judgeContact(field, text, file, out);
      break;
    case FieldKind::text:
    case FieldKind::name:
    case FieldKind::secret:
      break;
  }
  if (field == ListingField::title) judgeTitle(text, file, out);
  if (isStoreText(field)) judgeContent(field, text, file, out);
  return out;
}

void ListingRules::judgeRequired(ListingField field, std::string_view text, const std::string& file,
                                 std::vector<ListingFinding>& out) const {
  const auto& about = facts_.field(field);
  if (!about.required || !trimmed(text).empty()) return;
  if (field == ListingField::releaseNotes && context_.firstVersion) return;
  const std::string rule = std::string(fieldKey(field)) + ".required";
  const auto level = levelOf(rule);
  if (!level) return;
  const std::string name = inSentence(about.label);
  out.push_back(finding(rule, *level, field, file, std::nullopt,
                        listingVerdict(*level, "No " + name, findRule(catalog_, rule)->reason,
                                       manual("Add the " + name, "Write it into " + fileNameOf(file),
                                              {"Write the " + name + " into " + file}))));
}

void ListingRules::judgeLength(ListingField field, std::string_view text, const std::string& file,
                               std::vector<ListingFinding>& out) const {
  const auto& about = facts_.field(field);
  if (!about.limit || !longerThan(text, *about.limit)) return;
  const std::int64_t count = static_cast<std::int64_t>(characterCount(trimmed(text)));
  const std::string rule = std::string(fieldKey(field)) + ".length";
  const auto level = levelOf(rule);
  if (!level) return;
  const std::int64_t limit = *about.limit;
  const std::int64_t excess = count - limit;
  const bool keywords = field == ListingField::keywords;
  std::optional<std::string> fixed = keywords ? trimKeywordsToLimit(text, limit) : trimToLimit(text, limit);
  const std::string limitText = plural(limit, "character", "characters");
  auto byHand =
      Action{.title = "Shorten it yourself",
             .description = "Remove " + plural(excess, "character", "characters") + " where it costs least",
             .type = ActionType::manual({"Remove " + plural(excess, "character", "characters") + " from " + file,
                                         "Keep the words that matter most to people searching"})};
  // A keyword over the limit on its own cannot be trimmed without cutting it in half.
  auto guidance = fixed ? autoFix("Trim to " + limitText,
                                  keywords ? "Drop the last keywords until the list fits"
                                           : "Cut the text after its last character that fits",
                                  std::move(byHand))
                        : manual("Shorten the first keyword", "It is longer than the whole list may be",
                                 {"Replace the first keyword in " + file + " with a shorter one",
                                  "Keep the words that matter most to people searching"});
  const std::string message =
      fmt::format("{}: {} too long ({} of {})", about.label, plural(excess, "character", "characters"), count, limit);
  out.push_back(finding(rule, *level, field, file, positionAt(text, offsetAfterCharacters(text, limit)),
                        listingVerdict(*level, message, findRule(catalog_, rule)->reason, std::move(guidance)),
                        std::move(fixed)));
}

void ListingRules::judgeMissingOptional(ListingField field, std::string_view, const std::string& file,
                                        std::vector<ListingFinding>& out) const {
  std::string rule;
  switch (field) {
    case ListingField::subtitle:
    case ListingField::promotionalText:
    case ListingField::marketingUrl:
    case ListingField::video:
      rule = std::string(fieldKey(field)) + ".missing";
      break;
    default:
      return;
  }
  const auto level = levelOf(rule);
  if (!level) return;
  const std::string name = inSentence(facts_.field(field).label);
  out.push_back(finding(rule, *level, field, file, std::nullopt,
                        listingVerdict(*level, "No " + name, findRule(catalog_, rule)->reason,
                                       manual("Add a " + name, "Write it into " + fileNameOf(file),
                                              {"Write the " + name + " into " + file}, "5-15 minutes"))));
}

void ListingRules::judgeKeywords(std::string_view text, const std::string& file,
                                 std::vector<ListingFinding>& out) const {
  constexpr auto field = ListingField::keywords;
  if (const auto level = levelOf("keywords.duplicate")) {
    const auto keywords = splitKeywords(text);
    std::vector<std::string> seen;
    seen.reserve(keywords.size());
    std::optional<std::string> fixed;  // made for the first repeat: most lists have none
    for (const auto& keyword : keywords) {
      std::string lower = lowercased(keyword.text);
      if (std::ranges::find(seen, lower) == seen.end()) {
        seen.push_back(std::move(lower));
        continue;
      }
      if (!fixed) fixed = withoutDuplicateKeywords(text);
      const std::string quoted = fmt::format("'{}'", keyword.text);
      out.push_back(
          finding("keywords.duplicate", *level, field, file, positionAt(text, keyword.offset),
                  listingVerdict(
                      *level, "Keyword " + quoted + " appears twice", findRule(catalog_, "keywords.duplicate")->reason,
                      autoFix("Remove duplicate keywords", "Keep the first of each keyword and drop the repeats",
                              Action{.title = "Replace it",
                                     .description = "Use the characters for another search term",
                                     .type = ActionType::manual(
                                         {"Replace " + quoted + " in " + file + " with a term people search for"})})),
                  fixed));
    }
  }
  if (const auto level = levelOf("keywords.spacing")) {
    const std::string fixed = withoutSpacesAroundCommas(text);
    const std::string_view inner = trimmed(text);
    if (fixed != inner) {
      const std::int64_t wasted =
          static_cast<std::int64_t>(characterCount(inner)) - static_cast<std::int64_t>(characterCount(fixed));
      // The first white space next to a comma.
      std::size_t at = 0;
      for (std::size_t comma = text.find(','); comma != std::string_view::npos; comma = text.find(',', comma + 1)) {
        const std::string_view before = text.substr(0, comma);
        const std::size_t kept =
            trimmed(before).size() + static_cast<std::size_t>(trimmed(before).data() - before.data());
        if (kept < comma) {
          at = kept;
          break;
        }
        if (comma + 1 < text.size() && trimmed(text.substr(comma + 1)).data() != text.data() + comma + 1) {
          at = comma + 1;
          break;
        }
      }
      out.push_back(finding(
          "keywords.spacing", *level, field, file, positionAt(text, at),
          listingVerdict(*level, "Spaces around commas waste " + plural(wasted, "character", "characters"),
                         findRule(catalog_, "keywords.spacing")->reason,
                         autoFix("Remove spaces around commas", "Write the keywords as one,two,three",
                                 Action{.title = "Edit the list",
                                        .description = "Remove the spaces yourself",
                                        .type = ActionType::manual({"Remove the spaces next to commas in " + file})})),
          fixed));
    }
  }
}

std::vector<ListingFinding> ListingRules::judgeKeywordRepeats(std::string_view keywords, std::string_view name,
                                                              std::string_view subtitle,
                                                              const std::string& file) const {
  std::vector<ListingFinding> out;
  const auto level = levelOf("keywords.repeats-name");
  if (!level) return out;
  const auto spans = splitKeywords(keywords);
  // Reused by every call on this thread: a report lists every locale's findings.
  thread_local PhraseMatcher matcher;
  thread_local TokenizedText words;
  matcher.clear();
  std::vector<std::size_t> spanOf;  // phrase index -> keyword
  spanOf.reserve(spans.size());
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (matcher.add(spans[i].text)) spanOf.push_back(i);
  }
  std::vector<bool> inName(spans.size()), inSubtitle(spans.size());
  words.assign(name);
  for (const auto& match : matcher.findAll(words)) inName[spanOf[match.phrase]] = true;
  words.assign(subtitle);
  for (const auto& match : matcher.findAll(words)) inSubtitle[spanOf[match.phrase]] = true;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    if (!inName[i] && !inSubtitle[i]) continue;
    const std::string quoted = fmt::format("'{}'", spans[i].text);
    const std::string where = inName[i] ? "app name" : "subtitle";
    out.push_back(finding(
        "keywords.repeats-name", *level, ListingField::keywords, file, positionAt(keywords, spans[i].offset),
        listingVerdict(
            *level, "Keyword " + quoted + " is already in the " + where,
            findRule(catalog_, "keywords.repeats-name")->reason,
            manual("Use another keyword", "The " + where + " is searched already",
                   {"Replace " + quoted + " in " + file + " with a term that is not in the name or subtitle"}))));
  }
  return out;
}

void ListingRules::judgeUrl(ListingField field, std::string_view text, const std::string& file,
                            std::vector<ListingFinding>& out) const {
  const std::string& label = facts_.field(field).label;
  const std::string_view address = trimmed(text);
  const bool clean = !hasSpaceOrControl(address);
  // Schemes are case-insensitive; an address needs a host a browser can look up after the
  // scheme ("https://" or "https://user@/" parse as URIs, but lead nowhere).
  const auto parsed = boost::urls::parse_uri(address);
  const std::string scheme = parsed ? lowercased(parsed->scheme()) : std::string();
  const bool hasHost = parsed && parsed->has_authority() && isLookupHost(*parsed);
  if (!clean || !hasHost || (scheme != "https" && scheme != "http")) {
    if (const auto level = levelOf("url.invalid")) {
      const std::string problem =
          !clean ? " contains a space or a control character" : " is not a complete web address";
      out.push_back(
          finding("url.invalid", *level, field, file, std::nullopt,
                  listingVerdict(*level, label + problem, findRule(catalog_, "url.invalid")->reason,
                                 manual("Fix the address", "Write the whole address, starting with https://",
                                        {"Write an address such as https://your-site.app/page into " + file}))));
    }
    return;
  }
  if (scheme == "http") {
    if (const auto level = levelOf("url.insecure")) {
      out.push_back(finding(
          "url.insecure", *level, field, file, std::nullopt,
          listingVerdict(*level, label + " uses http:// instead of https://",
                         findRule(catalog_, "url.insecure")->reason,
                         manual("Switch to https", "Serve the page over https and update the address",
                                {"Make the page available over https", "Replace http:// with https:// in " + file},
                                "5 minutes"))));
    }
  }
  // Reused by every call on this thread, as judging a folder reads many addresses.
  thread_local TokenizedText split;
  split.assign(address);
  const auto& links = split.links();
  if (!links.empty() && facts_.isPlaceholderHost(links.front().host)) {
    if (const auto level = levelOf("address.placeholder")) {
      out.push_back(
          finding("address.placeholder", *level, field, file, std::nullopt,
                  listingVerdict(*level, label + " points to a placeholder domain (" + links.front().host + ")",
                                 findRule(catalog_, "address.placeholder")->reason,
                                 manual("Use the real address", "Point it to your own site",
                                        {"Write your page's real address into " + file}))));
    }
  }
}

void ListingRules::judgeCopyright(std::string_view text, const std::string& file,
                                  std::vector<ListingFinding>& out) const {
  constexpr auto field = ListingField::copyright;
  const auto year = copyrightYear(text);
  if (!year || *year > context_.currentYear) {
    if (const auto level = levelOf("copyright.year")) {
      const std::string message =
          !year ? "Copyright does not start with a year" : fmt::format("Copyright year {} is in the future", *year);
      out.push_back(finding("copyright.year", *level, field, file, TextPosition{1, 1},
                            listingVerdict(*level, message, findRule(catalog_, "copyright.year")->reason,
                                           manual("Start it with the year",
                                                  fmt::format("Write it as \"{} Your Company\"", context_.currentYear),
                                                  {fmt::format("Start {} with {}", file, context_.currentYear)}))));
    }
    return;
  }
  if (*year < context_.currentYear) {
    if (const auto level = levelOf("copyright.outdated")) {
      out.push_back(finding(
          "copyright.outdated", *level, field, file, TextPosition{1, 1},
          listingVerdict(*level, fmt::format("Copyright year {} is not this year ({})", *year, context_.currentYear),
                         findRule(catalog_, "copyright.outdated")->reason,
                         manual("Update the year", fmt::format("Change the year to {}", context_.currentYear),
                                {fmt::format("Change the year in {} to {}", file, context_.currentYear)}))));
    }
  }
}

void ListingRules::judgeCategory(ListingField field, std::string_view text, const std::string& file,
                                 std::vector<ListingFinding>& out) const {
  const std::string_view value = trimmed(text);
  if (facts_.isCategory(value)) return;
  const auto level = levelOf("category.unknown");
  if (!level) return;
  std::string message = fmt::format("'{}' is not a category the store knows", value);
  const auto suggestion = closestMatch(value, facts_.categories(), 3);
  if (suggestion) message += "; did you mean '" + *suggestion + "'?";
  out.push_back(finding(
      "category.unknown", *level, field, file, TextPosition{1, 1},
      listingVerdict(*level, message, findRule(catalog_, "category.unknown")->reason,
                     manual("Use a store category",
                            suggestion ? "Write " + *suggestion + " into " + fileNameOf(file)
                                       : "Write one of the store's categories, such as PRODUCTIVITY",
                            {"Write a category such as " + suggestion.value_or("PRODUCTIVITY") + " into " + file}))));
}

void ListingRules::judgeContact(ListingField field, std::string_view text, const std::string& file,
                                std::vector<ListingFinding>& out) const {
  const std::string_view value = trimmed(text);
  const std::string& label = facts_.field(field).label;
  if (field == ListingField::reviewPhone) {
    if (looksLikePhoneNumber(value)) return;
    if (const auto level = levelOf("review-phone.format")) {
      out.push_back(
          finding("review-phone.format", *level, field, file, std::nullopt,
                  listingVerdict(*level, label + " does not look like a phone number",
                                 findRule(catalog_, "review-phone.format")->reason,
                                 manual("Fix the number", "Write it with the country code, such as +44 20 7946 0000",
                                        {"Write the number with its country code into " + file}))));
    }
    return;
  }
  if (!looksLikeEmailAddress(value)) {
    if (const auto level = levelOf("review-email.format")) {
      out.push_back(finding(
          "review-email.format", *level, field, file, std::nullopt,
          listingVerdict(*level, label + " is not an e-mail address", findRule(catalog_, "review-email.format")->reason,
                         manual("Fix the address", "Write an address such as review@your-site.app",
                                {"Write the review contact's e-mail address into " + file}))));
    }
    return;
  }
  const std::string host = hostOfEmail(value);
  if (!facts_.isPlaceholderHost(host)) return;
  if (const auto level = levelOf("address.placeholder")) {
    out.push_back(finding("address.placeholder", *level, field, file, std::nullopt,
                          listingVerdict(*level, label + " uses a placeholder domain (" + host + ")",
                                         findRule(catalog_, "address.placeholder")->reason,
                                         manual("Use a real address", "Review writes to this address",
                                                {"Write an address that reaches your team into " + file}))));
  }
}

void ListingRules::judgeContent(ListingField field, std::string_view text, const std::string& file,
                                std::vector<ListingFinding>& out) const {
  const bool claimsApply =
      field == ListingField::name || field == ListingField::subtitle || field == ListingField::keywords;
  const bool titleClaimsApply = field == ListingField::title && !words_->titleClaims.empty();
  if (words_->content.empty() && (!claimsApply || words_->claims.empty()) && !titleClaimsApply &&
      !levelOf("content.placeholder")) {
    return;
  }
  const std::string& label = facts_.field(field).label;
  // Reused by every call on this thread, so that judging many texts allocates little.
  thread_local TokenizedText tokens;
  tokens.assign(text);
  const auto allowedMatches = words_->allowed.findAll(tokens);
  auto isAllowed = [&](const PhraseMatch& match) {
    return std::ranges::any_of(allowedMatches, [&](const PhraseMatch& allowed) {
      return allowed.offset <= match.offset && match.offset + match.length <= allowed.offset + allowed.length;
    });
  };
  struct Hit {
    std::size_t offset;
    std::size_t length;
    std::string_view rule;
  };
  std::vector<Hit> hits;
  for (const auto& match : words_->content.findAll(tokens)) {
    if (!isAllowed(match)) hits.push_back({match.offset, match.length, words_->contentRules[match.phrase]});
  }
  if (claimsApply) {
    for (const auto& match : words_->claims.findAll(tokens)) {
      if (!isAllowed(match)) hits.push_back({match.offset, match.length, "content.claim"});
    }
  }
  if (titleClaimsApply) {
    for (const auto& match : words_->titleClaims.findAll(tokens)) {
      if (!isAllowed(match)) hits.push_back({match.offset, match.length, "title.claim"});
    }
  }
  if (!tokens.links().empty() && levelOf("content.placeholder")) {
    for (const auto& link : tokens.links()) {
      if (facts_.isPlaceholderHost(link.host)) hits.push_back({link.offset, link.length, "content.placeholder"});
    }
  }
  // Reported in catalog order, each rule's matches in text order.
  std::ranges::sort(hits, [](const Hit& a, const Hit& b) { return a.offset < b.offset; });
  for (const auto& rule : catalog_) {
    if (!rule.id.starts_with("content.") && rule.id != "title.claim") continue;
    for (const auto& hit : hits) {
      if (hit.rule != rule.id) continue;
      const auto level = levelOf(hit.rule);
      if (!level) continue;
      const std::string quoted = fmt::format("'{}'", text.substr(hit.offset, hit.length));
      std::string message;
      if (hit.rule == "content.other-platform") message = label + " mentions another platform: " + quoted;
      if (hit.rule == "content.placeholder") message = label + " holds placeholder text: " + quoted;
      if (hit.rule == "content.future-feature") message = label + " promises a future feature: " + quoted;
      if (hit.rule == "content.claim") message = label + " makes a price or ranking claim: " + quoted;
      if (hit.rule == "content.profanity") message = label + " holds profanity: " + quoted;
      if (hit.rule == "content.forbidden") message = label + " holds a forbidden word: " + quoted;
      if (hit.rule == "title.claim") message = label + " makes a claim or calls to action: " + quoted;
      auto guidance =
          manual("Reword it", "Remove or replace " + quoted, {"Remove or replace " + quoted + " in " + file});
      guidance.alternativeActions.push_back(
          Action{.title = "Allow the word",
                 .description = "If it is meant, allow it in the configuration",
                 .type = ActionType::manual({"Add " + quoted + " to allowed under [words] in .corvane.toml"})});
      out.push_back(finding(hit.rule, *level, field, file, positionAt(text, hit.offset),
                            listingVerdict(*level, std::move(message), rule.reason, std::move(guidance))));
    }
  }
}

void ListingRules::judgeTitle(std::string_view text, const std::string& file, std::vector<ListingFinding>& out) const {
  constexpr auto field = ListingField::title;
  const std::string& label = facts_.field(field).label;
  if (const auto level = levelOf("title.emoji")) {
    struct Hit {
      std::size_t offset;
      std::string_view shown;
      bool emoticon;
    };
    std::vector<Hit> hits;
    for (std::size_t at = 0; at < text.size();) {
      const std::string_view character = prefixCharacters(text.substr(at), 1);
      if (character.empty()) break;
      if (isEmojiCharacter(character)) hits.push_back({at, character, false});
      at += character.size();
    }
    // An emoticon counts where it stands apart from letters and digits, so that "10:30" or
    // "https://" hold none.
    for (const auto& emoticon : facts_.emoticons()) {
      for (auto at = text.find(emoticon); at != std::string_view::npos; at = text.find(emoticon, at + 1)) {
        const std::size_t end = at + emoticon.size();
        if ((at > 0 && isAsciiAlnum(text[at - 1])) || (end < text.size() && isAsciiAlnum(text[end]))) continue;
        const bool inside = std::ranges::any_of(hits, [&](const Hit& other) {
          return other.emoticon && other.offset <= at && end <= other.offset + other.shown.size();
        });
        if (!inside) hits.push_back({at, text.substr(at, emoticon.size()), true});
      }
    }
    std::ranges::sort(hits, {}, &Hit::offset);
    for (const auto& hit : hits) {
      const std::string quoted = fmt::format("'{}'", hit.shown);
      out.push_back(
          finding("title.emoji", *level, field, file, positionAt(text, hit.offset),
                  listingVerdict(*level, label + (hit.emoticon ? " holds an emoticon: " : " holds an emoji: ") + quoted,
                                 findRule(catalog_, "title.emoji")->reason,
                                 manual("Remove it", "Keep emoji and emoticons for the description",
                                        {"Remove " + quoted + " from " + file}))));
    }
  }
  if (const auto level = levelOf("title.capitals");
      level && isAllCapitals(trimmed(text), configuration_.capitalBrands)) {
    auto guidance = manual("Write it in normal letter case", "Capitalise it as a sentence or a name is",
                           {"Rewrite " + file + " in normal letter case"});
    guidance.alternativeActions.push_back(
        Action{.title = "Declare the brand",
               .description = "If the brand is written in capitals, say so in the configuration",
               .type = ActionType::manual({"Add the brand, as written, to capital-brands in .corvane.toml"})});
    const std::size_t start = static_cast<std::size_t>(trimmed(text).data() - text.data());
    out.push_back(finding("title.capitals", *level, field, file, positionAt(text, start),
                          listingVerdict(*level, label + " is written in capitals",
                                         findRule(catalog_, "title.capitals")->reason, std::move(guidance))));
  }
}

std::vector<ListingFinding> ListingRules::judgeDemoAccount(std::string_view user, std::string_view password) const {
  std::vector<ListingFinding> out;
  const bool hasUser = !trimmed(user).empty();
  const bool hasPassword = !trimmed(password).empty();
  if (hasUser == hasPassword) return out;
  const auto level = levelOf("review.demo-account");
  if (!level) return out;
  const auto missing = hasUser ? ListingField::reviewDemoPassword : ListingField::reviewDemoUser;
  const std::string file(fieldFile(missing));
  const std::string message =
      hasUser ? "Demo account has a user name but no password" : "Demo account has a password but no user name";
  out.push_back(finding("review.demo-account", *level, missing, file, std::nullopt,
                        listingVerdict(*level, message, findRule(catalog_, "review.demo-account")->reason,
                                       manual("Complete the demo account", "Give both the user name and the password",
                                              {"Write the missing part into " + file,
                                               "Or remove both files if review needs no account"}))));
  return out;
}

std::vector<ListingFinding> ListingRules::judgeMissingChangelog(std::string_view newest, std::string_view fallback,
                                                                const std::string& file) const {
  std::vector<ListingFinding> out;
  if (context_.firstVersion || !trimmed(newest).empty() || !trimmed(fallback).empty()) return out;
  const auto level = levelOf("changelog.missing");
  if (!level) return out;
  out.push_back(finding(
      "changelog.missing", *level, ListingField::changelog, file, std::nullopt,
      listingVerdict(*level, "No release notes for the newest version, and no changelogs/default.txt",
                     findRule(catalog_, "changelog.missing")->reason,
                     manual("Say what is new", "Write a few lines on what changed",
                            {"Write the release notes into changelogs/<versionCode>.txt of the version you upload",
                             "Or write notes for every version into changelogs/default.txt"},
                            "5 minutes"))));
  return out;
}

std::vector<ListingFinding> ListingRules::judgeUnknownLocale(const UnknownLocaleFolder& folder) const {
  std::vector<ListingFinding> out;
  const auto level = levelOf("locale.unknown");
  if (!level) return out;
  std::string message = fmt::format("'{}' is not a locale the store knows", folder.name);
  if (folder.suggestion) message += "; did you mean '" + *folder.suggestion + "'?";
  std::vector<std::string> steps;
  if (folder.suggestion) steps.push_back("Rename the folder " + folder.name + " to " + *folder.suggestion);
  steps.push_back("If the store has added this locale, add \"" + folder.name + "\" to extra-locales in .corvane.toml");
  out.push_back(
      finding("locale.unknown", *level, std::nullopt, folder.name, std::nullopt,
              listingVerdict(*level, message, findRule(catalog_, "locale.unknown")->reason,
                             manual(folder.suggestion ? "Rename it to " + *folder.suggestion : "Rename it",
                                    "Name the folder with one of the store's locale codes", std::move(steps)))));
  return out;
}

std::optional<std::string> ListingRules::autoFixed(ListingField field, std::string_view text) const {
  std::string current(text);
  if (field == ListingField::keywords) {
    if (levelOf("keywords.spacing")) current = withoutSpacesAroundCommas(current);
    if (levelOf("keywords.duplicate")) current = withoutDuplicateKeywords(current);
    if (current == trimmed(text)) current = std::string(text);  // only trimming: nothing to fix
  }
  const auto& about = facts_.field(field);
  const std::string rule = std::string(fieldKey(field)) + ".length";
  if (about.limit && levelOf(rule) && longerThan(current, *about.limit)) {
    if (field != ListingField::keywords) {
      current = trimToLimit(current, *about.limit);
    } else if (auto cut = trimKeywordsToLimit(current, *about.limit)) {
      current = std::move(*cut);
    }
  }
  if (current == text) return std::nullopt;
  return current;
}

}  // namespace corvane::store

#pragma once

#include "corvane/store/listing_configuration.hpp"
#include "corvane/store/listing_field.hpp"
#include "corvane/store/listing_finding.hpp"
#include "corvane/store/listing_folder.hpp"
#include "corvane/store/phrase_matcher.hpp"
#include "corvane/store/rule_catalog.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane::store {

class StoreFacts;
struct CompiledWordLists;

/// What the rules of a listing's locales can share, built once: the rule catalog, and the
/// word lists compiled for matching, which the locales that use the same words (those of
/// one language, as a rule) share, since compiling them is the expensive part of building
/// rules. The compiled lists are kept for the whole process too, so that the next listing
/// over the same facts finds them. Give one to every `ListingRules` of a listing; not safe
/// to share between threads.
class RuleCache {
 public:
  RuleCache();
  ~RuleCache();
  RuleCache(const RuleCache&) = delete;
  RuleCache& operator=(const RuleCache&) = delete;

 private:
  friend class ListingRules;
  std::shared_ptr<const std::vector<RuleInfo>> catalogFor(const StoreFacts& facts);

  const StoreFacts* facts_ = nullptr;  // the facts the catalog was built from
  std::shared_ptr<const std::vector<RuleInfo>> catalog_;
  std::unordered_map<std::string, std::shared_ptr<const CompiledWordLists>> wordLists_;
};

/// What the rules need to know beyond the texts.
struct RuleContext {
  /// Whether this is the app's first version (release notes are then not required); the
  /// configuration's `first-version` wins when it is set.
  bool firstVersion = false;
  /// The current year, for the copyright rules.
  int currentYear = 2026;
};

/// The catalog's rules as they apply to one locale, or to the shared files: each rule at its
/// configured level (or off), the word lists of the locale's language with the
/// configuration's forbidden and allowed words. Judging is const and keeps no state, so one
/// object serves any number of texts; build it once per locale, as compiling the word lists
/// is the expensive part.
class ListingRules {
 public:
  /// The rules for `locale` (empty for the shared files, which only the configuration's
  /// global settings reach). `facts` must outlive the object. With a `cache`, what was built
  /// before for the same facts and words is reused, also by an earlier cache.
  ListingRules(const StoreFacts& facts, const ListingConfiguration& configuration, std::string locale,
               RuleContext context, RuleCache* cache = nullptr);
  ~ListingRules();

  /// The locale the rules are for; empty for the shared files.
  const std::string& locale() const { return locale_; }

  /// The store's facts the rules follow.
  const StoreFacts& facts() const { return facts_; }

  /// The level `rule` has here; nothing when it is off.
  std::optional<RuleLevel> levelOf(std::string_view rule) const;

  /// Every finding of the single-field rules on `text`, the text of `field` read from
  /// `file`, in catalog order; matches of content rules in text order.
  std::vector<ListingFinding> judge(ListingField field, std::string_view text, const std::string& file) const;

  /// The keywords that repeat a word of the name or subtitle (`keywords.repeats-name`).
  std::vector<ListingFinding> judgeKeywordRepeats(std::string_view keywords, std::string_view name,
                                                  std::string_view subtitle, const std::string& file) const;

  /// Half a demo account (`review.demo-account`): a user name without a password or the
  /// other way round, reported on the file that is missing.
  std::vector<ListingFinding> judgeDemoAccount(std::string_view user, std::string_view password) const;

  /// Release notes for neither the newest version code nor `changelogs/default.txt`
  /// (`changelog.missing`), reported on `file`, the newest changelog's; nothing for a first
  /// version.
  std::vector<ListingFinding> judgeMissingChangelog(std::string_view newest, std::string_view fallback,
                                                    const std::string& file) const;

  /// A folder named like a locale that the store does not know (`locale.unknown`).
  std::vector<ListingFinding> judgeUnknownLocale(const UnknownLocaleFolder& folder) const;

  /// `text` of `field` with every auto-fix its findings offer applied in turn (spaces around
  /// commas, duplicate keywords, then the length limit); nothing when none applies.
  std::optional<std::string> autoFixed(ListingField field, std::string_view text) const;

 private:
  ListingFinding finding(std::string_view rule, RuleLevel level, std::optional<ListingField> field,
                         const std::string& file, std::optional<TextPosition> position, ValidationResult verdict,
                         std::optional<std::string> fixedText = std::nullopt) const;
  void judgeRequired(ListingField field, std::string_view text, const std::string& file,
                     std::vector<ListingFinding>& out) const;
  void judgeLength(ListingField field, std::string_view text, const std::string& file,
                   std::vector<ListingFinding>& out) const;
  void judgeKeywords(std::string_view text, const std::string& file, std::vector<ListingFinding>& out) const;
  void judgeMissingOptional(ListingField field, std::string_view text, const std::string& file,
                            std::vector<ListingFinding>& out) const;
  void judgeUrl(ListingField field, std::string_view text, const std::string& file,
                std::vector<ListingFinding>& out) const;
  void judgeCopyright(std::string_view text, const std::string& file, std::vector<ListingFinding>& out) const;
  void judgeCategory(ListingField field, std::string_view text, const std::string& file,
                     std::vector<ListingFinding>& out) const;
  void judgeContact(ListingField field, std::string_view text, const std::string& file,
                    std::vector<ListingFinding>& out) const;
  void judgeTitle(std::string_view text, const std::string& file, std::vector<ListingFinding>& out) const;
  void judgeContent(ListingField field, std::string_view text, const std::string& file,
                    std::vector<ListingFinding>& out) const;

  const StoreFacts& facts_;
  ListingConfiguration configuration_;
  std::string locale_;
  RuleContext context_;
  std::shared_ptr<const std::vector<RuleInfo>> catalogShared_;
  const std::vector<RuleInfo>& catalog_;  // *catalogShared_
  std::shared_ptr<const CompiledWordLists> words_;
};

/// The verdict of a finding at `level`: a blocker is invalid and critical with a blocker
/// impact, a rejection risk invalid with a medium rejection risk, an optimization valid
/// with a warning and a suboptimal impact, an opportunity valid with an opportunity impact;
/// each with display advice to match.
ValidationResult listingVerdict(RuleLevel level, std::string message, std::string reason, ActionGuidance guidance);

}  // namespace corvane::store

#pragma once

#include "finding.hpp"
#include "fix_change.hpp"
#include "metadata_folder.hpp"
#include "store_listing_entity.hpp"

#include "corvane/completion/completion_item.hpp"
#include "corvane/entities/app_essentials_with_dsl.hpp"
#include "corvane/entities/showcase_app_entity.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane::cli {

/// One locale loaded into the library: the rule-language entity, the showcase app entity and
/// the store-listing entity, registered with a change tracker of their own (the showcase
/// entity's id is fixed, so locales cannot share one tracker). The files are loaded as the
/// saved state, so that the tracker sees exactly the auto-fixes as unsaved changes.
class LocaleCheck {
 public:
  /// Loads `locale`, with the shared review address and the app version when given.
  LocaleCheck(LocaleMetadata locale, const std::optional<std::string>& reviewEmail,
              const std::optional<std::string>& appVersion);
  LocaleCheck(const LocaleCheck&) = delete;
  LocaleCheck& operator=(const LocaleCheck&) = delete;

  /// The locale's name.
  const std::string& locale() const { return metadata_.locale; }
  /// The texts as they are now, auto-fixes included.
  const LocaleMetadata& metadata() const { return metadata_; }
  /// The tracker the three entities are registered with.
  const std::shared_ptr<UnifiedChangeTracker>& tracker() const { return tracker_; }

  /// The reportable verdicts on the current values, by file in field order. When several
  /// entities judge one file, only the first verdict of each group is kept, so a too-long
  /// name is not reported twice.
  std::vector<Finding> findings() const;

  /// The auto-fixes the current verdicts offer: every field with a limit whose verdict's
  /// primary action is an auto-fix, trimmed to the limit on a character boundary.
  std::vector<FixChange> plannedFixes() const;

  /// Writes `change.after` into the entities as an edit (an unsaved change).
  void apply(const FixChange& change);

  /// Marks the edits saved, once they are on disk.
  void markSaved();

  /// Throws the edits away, back to the files' contents.
  void discard();

  /// One checklist item per file ("<locale>/<file>"), in field order, plus the review
  /// address: blocked by a blocker, in progress with a rejection risk, missing when a
  /// required field is empty, optional when an optional one is, completed otherwise.
  std::vector<CompletionItem> checklistItems() const;
  /// The same, from `findings()` already computed (they are the expensive part).
  std::vector<CompletionItem> checklistItems(const std::vector<Finding>& findings) const;

 private:
  struct Source {
    std::string file;
    std::string property;
    std::function<ValidationResult()> verdict;
  };

  std::vector<Source> sources() const;
  std::string relativeFile(MetadataField field) const;
  void setText(MetadataField field, const std::string& text);

  LocaleMetadata metadata_;
  std::optional<LocaleMetadata> saved_;  // what the files hold, kept from the first edit on
  bool hasReviewEmail_;
  bool hasAppVersion_;
  std::shared_ptr<UnifiedChangeTracker> tracker_;
  std::shared_ptr<AppEssentialsWithDSL> essentials_;
  std::shared_ptr<ShowcaseAppEntity> showcase_;
  std::shared_ptr<StoreListingEntity> listing_;
};

/// The keywords file as the showcase entity's list: split at commas, each keyword trimmed,
/// empty ones dropped.
std::vector<std::string> splitKeywords(std::string_view text);

/// `text` trimmed of surrounding white space and cut to at most `limit` characters, never
/// inside a character, without white space left dangling at the cut.
std::string trimToLimit(std::string_view text, std::int64_t limit);

/// A keyword list (comma-separated) trimmed like `trimToLimit`, but cut after the last whole
/// keyword that fits, with no comma left at the end. A first keyword longer than the limit
/// is cut like any text.
std::string trimKeywordsToLimit(std::string_view text, std::int64_t limit);

}  // namespace corvane::cli

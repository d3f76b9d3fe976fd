#pragma once

#include "corvane/submission/submission_entity.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <memory>
#include <string>
#include <vector>

namespace corvane::store {

/// A metadata folder as one submission entity, so that a listing's checklist can be filed
/// with an `AggregateCompletionGuide`: its state is that of the listing's change trackers.
/// One entity for the folder rather than one per locale: the guide re-derives its status
/// over all items on every filing, which per locale grows with the square of the locales.
class ListingSubmission final : public SubmissionEntity {
 public:
  /// The folder named `name`, whose locales' entities `trackers` hold (usually the one
  /// `StoreListing::tracker()`).
  ListingSubmission(std::string name, std::vector<std::shared_ptr<UnifiedChangeTracker>> trackers);

  /// The folder's name.
  std::string entityId() const override;
  /// Whether any tracker has unsaved changes (edits or auto-fixes not yet written).
  bool hasUnsavedChanges() const override;
  /// The trackers' change descriptions of the locales with changes, joined with "; ", or
  /// "No changes to submit".
  std::string changeDescription() const override;
  /// Submits every tracker that has changes, one after the other.
  boost::asio::awaitable<void> saveChanges() override;
  /// Discards every change through the trackers.
  void discardChanges() override;

 private:
  std::string name_;
  std::vector<std::shared_ptr<UnifiedChangeTracker>> trackers_;
};

}  // namespace corvane::store

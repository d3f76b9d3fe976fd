#pragma once

#include "corvane/submission/change_trackable.hpp"
#include "corvane/submission/submission_feature.hpp"

#include <boost/asio/awaitable.hpp>

#include <memory>
#include <string>
#include <vector>

namespace corvane {

class DefaultSubmissionCoordinator;

namespace testing {
struct DefaultChangeTrackerAccess;
}  // namespace testing

/// The change tracker over a fixed list of features that a coordinator hands out. It keeps
/// no state of its own: every answer is read from the features, in list order, and a
/// submission is awaited by its caller (so `isSubmitting()` is always false).
///
/// Only the coordinator creates trackers; tests do so through
/// `testing::DefaultChangeTrackerAccess`.
class DefaultChangeTracker final : public ChangeTrackable {
 public:
  /// True as soon as one feature, in list order, has unsaved changes.
  bool hasUnsavedChanges() const override;

  /// The same as `hasUnsavedChanges()`.
  bool canSubmit() const override;

  /// Always false.
  bool isSubmitting() const override;

  /// The non-empty change descriptions of the changed features, joined with ", ", or
  /// "No changes" when none is left (even if a feature with an empty description changed).
  std::string changeDescription() const override;

  /// Saves the changed features one after another, in list order. The first failure ends
  /// the walk and reaches the caller unchanged: features before it stay saved, those
  /// after it are not touched. The operation keeps the features alive itself.
  boost::asio::awaitable<void> submit() override;

  /// The same as `reset()`.
  void discard() override;

  /// Calls `discardChanges()` on every feature, changed or not.
  void reset() override;

 private:
  friend class DefaultSubmissionCoordinator;
  friend struct testing::DefaultChangeTrackerAccess;

  // `entities` must not hold null pointers.
  explicit DefaultChangeTracker(std::vector<std::shared_ptr<SubmissionFeature>> entities);

  std::vector<std::shared_ptr<SubmissionFeature>> entities_;
};

}  // namespace corvane

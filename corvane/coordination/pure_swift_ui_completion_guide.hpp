#pragma once

#include "corvane/completion/completion_guidable.hpp"
#include "corvane/completion/completion_item.hpp"
#include "corvane/completion/completion_progress.hpp"
#include "corvane/completion/completion_status.hpp"
#include "corvane/submission/submission_feature.hpp"

#include <boost/asio/awaitable.hpp>

#include <memory>
#include <vector>

namespace corvane {

/// The stateless completion guide over a fixed list of features: every read asks each
/// feature for its `createCompletionItems()` afresh (in list order), so the checklist is
/// always current and never needs refreshing. Blocked items are deliberately not counted,
/// and the status looks at the required items only. It logs nothing and has no observed
/// state of its own.
class PureSwiftUICompletionGuide final : public CompletionGuidable {
 public:
  /// A guide over `entities` (none of them null), kept for the guide's lifetime.
  explicit PureSwiftUICompletionGuide(std::vector<std::shared_ptr<SubmissionFeature>> entities);

  /// The items of priority `required` or `critical`, in item order.
  std::vector<CompletionItem> requiredItems() const override;

  /// The items of priority `optional` or `recommended`, in item order.
  std::vector<CompletionItem> optionalItems() const override;

  /// From the required items only: `notStarted` when there are none (whatever optional
  /// items exist), `readyForSubmission` when all are completed, otherwise
  /// `inProgress(completed, total)` over them.
  CompletionStatus completionStatus() const override;

  /// The counts over all items; `blockedItems` is always 0.
  CompletionProgress completionProgress() const override;

  /// Whether every required item is completed (true when there are none); blocked items
  /// do not enter.
  bool canComplete() const override;

  /// Does nothing: every value is computed when read.
  boost::asio::awaitable<void> refreshCompletion() override;

  /// Fails with `CompletionError::requirementsNotMet` when a required item is not
  /// completed, otherwise succeeds at once. Changes nothing; keeps the features alive
  /// itself.
  boost::asio::awaitable<void> executeCompletion() override;

 private:
  std::vector<std::shared_ptr<SubmissionFeature>> entities_;
};

}  // namespace corvane

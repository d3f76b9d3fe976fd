#pragma once

#include "corvane/completion/completion_item.hpp"
#include "corvane/completion/completion_progress.hpp"
#include "corvane/completion/completion_status.hpp"
#include "corvane/observation/observation_registrar.hpp"

#include <boost/asio/awaitable.hpp>

#include <vector>

namespace corvane {

/// A completion guide: turns the submission's checklist into required and optional items,
/// progress counts and one overall verdict, and runs the final completion step. Observers
/// re-read its values when it announces a change.
class CompletionGuidable : public Observable {
 public:
  virtual ~CompletionGuidable() = default;

  /// The items of priority `required` or `critical`, in the guide's item order.
  virtual std::vector<CompletionItem> requiredItems() const = 0;

  /// The items of priority `optional` or `recommended`, in the guide's item order.
  virtual std::vector<CompletionItem> optionalItems() const = 0;

  /// The verdict on the whole submission.
  virtual CompletionStatus completionStatus() const = 0;

  /// The counts over all items.
  virtual CompletionProgress completionProgress() const = 0;

  /// Whether `executeCompletion()` may succeed now.
  virtual bool canComplete() const = 0;

  /// Brings the guide's verdict up to date with its items. Never fails.
  virtual boost::asio::awaitable<void> refreshCompletion() = 0;

  /// Runs the final completion step; fails (typically with `CompletionError`) when the
  /// requirements are not met.
  virtual boost::asio::awaitable<void> executeCompletion() = 0;

 protected:
  CompletionGuidable() = default;
};

}  // namespace corvane

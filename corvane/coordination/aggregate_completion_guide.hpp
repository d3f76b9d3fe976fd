#pragma once

#include "corvane/completion/completion_guidable.hpp"
#include "corvane/completion/completion_item.hpp"
#include "corvane/completion/completion_progress.hpp"
#include "corvane/completion/completion_status.hpp"
#include "corvane/submission/submission_configuration.hpp"
#include "corvane/submission/submission_entity.hpp"
#include "corvane/support/logging.hpp"

#include <boost/asio/awaitable.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace corvane {

/// The standalone completion guide: the host hands in checklist items per entity id, and
/// the guide derives progress, a stored status, the next thing to do, and runs the final
/// completion step. Entities are kept in the order their ids were first added, and each
/// entity's items in the order handed in; every walk over all items follows that order.
/// Steps are logged to "Corvane.CompletionGuide".
///
/// The status is stored, not derived on read: `add`, `remove`, `refreshCompletion` and a
/// failed execution re-derive it, `reset` and a successful execution set it directly.
///
/// Always shared: an execution holds on to its guide while it waits.
///
/// Observed keys: "entityCompletionItems", "completionStatus".
class AggregateCompletionGuide final : public CompletionGuidable,
                                       public std::enable_shared_from_this<AggregateCompletionGuide> {
 private:
  struct Passkey {};

 public:
  /// A guide without items, status `notStarted`. Logs "🔧 AggregateCompletionGuide
  /// initialized" at debug level.
  static std::shared_ptr<AggregateCompletionGuide> create(
      SubmissionConfiguration configuration = SubmissionConfiguration::default_());

  /// Use `create`.
  AggregateCompletionGuide(Passkey, SubmissionConfiguration configuration);

  /// The settings given at construction; nothing here acts on them.
  const SubmissionConfiguration& configuration() const;

  /// Files `items` under `entity`'s id, replacing whatever that id had (an empty list
  /// still registers the id), then re-derives the status.
  void add(std::vector<CompletionItem> items, const SubmissionEntity& entity);

  /// Drops the items filed under `entityId`, if any, then re-derives the status. An
  /// unknown id is no error.
  void remove(std::string_view entityId);

  /// Drops every item and sets the status to `notStarted` without deriving it.
  void reset();

  /// The items filed under `entityId`; empty for an unknown id.
  std::vector<CompletionItem> getItems(std::string_view entityId) const;

  /// All items grouped by category, an item without one under "General"; each group keeps
  /// the item order.
  std::map<std::string, std::vector<CompletionItem>> getItemsByCategory() const;

  /// The ids that have items filed (possibly an empty list), in the order first added.
  std::vector<std::string> registeredEntityIds() const;

  /// The items of priority `required` or `critical`, in item order.
  std::vector<CompletionItem> requiredItems() const override;

  /// The items of priority `optional` or `recommended`, in item order.
  std::vector<CompletionItem> optionalItems() const override;

  /// The counts over all items, blocked items included.
  CompletionProgress completionProgress() const override;

  /// `completionProgress().progressPercentage()`: a fraction, 0.0 without items.
  double completionPercentage() const;

  /// The stored status.
  CompletionStatus completionStatus() const override;

  /// Whether every required item is completed (true when there are none) and no item is
  /// blocked.
  bool canComplete() const override;

  /// Whether `entityId` is known and has an item that is not completed.
  bool hasIncompleteItems(std::string_view entityId) const;

  /// The ids with an item that is not completed, in entity order.
  std::vector<std::string> entitiesWithIncompleteItems() const;

  /// The item that is not completed with the highest priority, whatever its status; the
  /// first in item order among equals. Nothing when every item is completed.
  std::optional<CompletionItem> nextActionItem() const;

  /// Re-derives the status, logging it. Never fails.
  boost::asio::awaitable<void> refreshCompletion() override;

  /// Runs the final step. Fails with `CompletionError::requirementsNotMet` (changing
  /// nothing) when a required item is not completed or any item is blocked. Otherwise sets
  /// the status to `inProgress` over the current counts, waits half a second and sets it
  /// to `readyForSubmission`. A cancelled wait re-derives the status and rethrows the
  /// cancellation (a `boost::system::system_error` with `operation_aborted`) as it is.
  boost::asio::awaitable<void> executeCompletion() override;

 private:
  using EntityItems = std::vector<std::pair<std::string, std::vector<CompletionItem>>>;

  static boost::asio::awaitable<void> refresh(std::shared_ptr<AggregateCompletionGuide> self);
  static boost::asio::awaitable<void> execute(std::shared_ptr<AggregateCompletionGuide> self);

  const EntityItems& entityCompletionItems() const;
  std::vector<CompletionItem> allItems() const;
  void updateCompletionStatus();
  void setCompletionStatus(CompletionStatus status);

  SubmissionConfiguration configuration_;
  EntityItems entityCompletionItems_;
  CompletionStatus completionStatus_ = CompletionStatus::notStarted();
  std::shared_ptr<spdlog::logger> logger_;
};

}  // namespace corvane

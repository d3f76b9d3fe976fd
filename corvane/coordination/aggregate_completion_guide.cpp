#include "corvane/coordination/aggregate_completion_guide.hpp"

#include "corvane/completion/completion_error.hpp"
#include "corvane/support/sleep.hpp"

#include <spdlog/logger.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <iterator>

namespace corvane {

namespace {

using Items = std::vector<CompletionItem>;

// Stands in for the real submission work.
constexpr std::chrono::nanoseconds kExecutionWait{500'000'000};

bool isDone(const CompletionItem& item) {
  return item.status.isCompleted();
}

// The counts the guide's answers are made of, taken in one pass over every entity's items
// rather than over a copy of them all.
struct Tally {
  std::int64_t total = 0;
  std::int64_t completed = 0;
  std::int64_t required = 0;
  std::int64_t blocked = 0;
  std::int64_t optionalLeft = 0;  // optional items not completed
  bool allRequiredCompleted = true;

  CompletionProgress progress() const { return CompletionProgress{completed, total, required, total - required, blocked}; }
};

template <typename EntityItems>
Tally tally(const EntityItems& entities) {
  Tally counts;
  for (const auto& [id, items] : entities) {
    for (const auto& item : items) {
      const bool required = isRequired(item.priority);
      ++counts.total;
      counts.completed += isDone(item);
      counts.required += required;
      counts.blocked += item.status.isBlocked();
      counts.optionalLeft += !required && !item.status.isCompleted();
      if (required && !isDone(item)) counts.allRequiredCompleted = false;
    }
  }
  return counts;
}

}  // namespace

std::shared_ptr<AggregateCompletionGuide> AggregateCompletionGuide::create(SubmissionConfiguration configuration) {
  return std::make_shared<AggregateCompletionGuide>(Passkey{}, std::move(configuration));
}

AggregateCompletionGuide::AggregateCompletionGuide(Passkey, SubmissionConfiguration configuration)
    : configuration_(std::move(configuration)), logger_(logger("CompletionGuide")) {
  logger_->debug("🔧 AggregateCompletionGuide initialized");
}

const SubmissionConfiguration& AggregateCompletionGuide::configuration() const {
  return configuration_;
}

void AggregateCompletionGuide::add(std::vector<CompletionItem> items, const SubmissionEntity& entity) {
  const std::string id = entity.entityId();
  const auto count = items.size();
  observationRegistrar().withMutation("entityCompletionItems", [&] {
    const auto found = std::find_if(entityCompletionItems_.begin(), entityCompletionItems_.end(),
                                    [&](const auto& entry) { return entry.first == id; });
    if (found != entityCompletionItems_.end()) {
      found->second = std::move(items);
    } else {
      entityCompletionItems_.emplace_back(id, std::move(items));
    }
  });
  logger_->debug("✅ Added {} completion items for entity: {}", count, id);
  updateCompletionStatus();
}

void AggregateCompletionGuide::remove(std::string_view entityId) {
  observationRegistrar().withMutation("entityCompletionItems", [&] {
    std::erase_if(entityCompletionItems_, [&](const auto& entry) { return entry.first == entityId; });
  });
  logger_->debug("🗑️ Removed completion items for entity: {}", entityId);
  updateCompletionStatus();
}

void AggregateCompletionGuide::reset() {
  logger_->info("🔄 Resetting completion guide");
  observationRegistrar().withMutation("entityCompletionItems", [&] { entityCompletionItems_.clear(); });
  setCompletionStatus(CompletionStatus::notStarted());
  logger_->info("✅ Completion guide reset complete");
}

std::vector<CompletionItem> AggregateCompletionGuide::getItems(std::string_view entityId) const {
  for (const auto& [id, items] : entityCompletionItems()) {
    if (id == entityId) return items;
  }
  return {};
}

std::map<std::string, std::vector<CompletionItem>> AggregateCompletionGuide::getItemsByCategory() const {
  std::map<std::string, std::vector<CompletionItem>> groups;
  for (auto& item : allItems()) {
    auto category = item.category.value_or("General");
    groups[std::move(category)].push_back(std::move(item));
  }
  return groups;
}

std::vector<std::string> AggregateCompletionGuide::registeredEntityIds() const {
  std::vector<std::string> ids;
  for (const auto& [id, items] : entityCompletionItems()) ids.push_back(id);
  return ids;
}

std::vector<CompletionItem> AggregateCompletionGuide::requiredItems() const {
  auto items = allItems();
  std::erase_if(items, [](const auto& item) { return !isRequired(item.priority); });
  return items;
}

std::vector<CompletionItem> AggregateCompletionGuide::optionalItems() const {
  auto items = allItems();
  std::erase_if(items, [](const auto& item) { return isRequired(item.priority); });
  return items;
}

CompletionProgress AggregateCompletionGuide::completionProgress() const {
  return tally(entityCompletionItems()).progress();
}

double AggregateCompletionGuide::completionPercentage() const {
  return completionProgress().progressPercentage();
}

CompletionStatus AggregateCompletionGuide::completionStatus() const {
  observationRegistrar().access("completionStatus");
  return completionStatus_;
}

bool AggregateCompletionGuide::canComplete() const {
  const auto counts = tally(entityCompletionItems());
  return counts.allRequiredCompleted && counts.blocked < 1;
}

bool AggregateCompletionGuide::hasIncompleteItems(std::string_view entityId) const {
  const auto items = getItems(entityId);
  return std::any_of(items.begin(), items.end(), [](const auto& item) { return !isDone(item); });
}

std::vector<std::string> AggregateCompletionGuide::entitiesWithIncompleteItems() const {
  std::vector<std::string> ids;
  for (const auto& [id, items] : entityCompletionItems()) {
    if (std::any_of(items.begin(), items.end(), [](const auto& item) { return !isDone(item); })) ids.push_back(id);
  }
  return ids;
}

std::optional<CompletionItem> AggregateCompletionGuide::nextActionItem() const {
  const CompletionItem* best = nullptr;
  for (const auto& [id, items] : entityCompletionItems()) {
    for (const auto& item : items) {
      if (isDone(item)) continue;
      // Only a strictly higher priority displaces the current choice: the first of equals wins.
      if (best == nullptr || best->priority < item.priority) best = &item;
    }
  }
  if (best == nullptr) return std::nullopt;
  return *best;
}

boost::asio::awaitable<void> AggregateCompletionGuide::refreshCompletion() {
  return refresh(shared_from_this());
}

boost::asio::awaitable<void> AggregateCompletionGuide::executeCompletion() {
  return execute(shared_from_this());
}

boost::asio::awaitable<void> AggregateCompletionGuide::refresh(std::shared_ptr<AggregateCompletionGuide> self) {
  self->logger_->info("🔄 Refreshing completion state for {} entities", self->entityCompletionItems().size());
  self->updateCompletionStatus();
  self->logger_->info("✅ Completion state refreshed");
  co_return;
}

boost::asio::awaitable<void> AggregateCompletionGuide::execute(std::shared_ptr<AggregateCompletionGuide> self) {
  // A blocked item is refused with the same error as an unfinished required one, on purpose.
  if (!self->canComplete()) {
    self->logger_->error("⚠️ Cannot execute completion - requirements not met");
    throw CompletionError::requirementsNotMet();
  }
  self->logger_->info("🚀 Executing completion for {} entities", self->entityCompletionItems().size());
  const auto progress = self->completionProgress();
  self->setCompletionStatus(CompletionStatus::inProgress(progress.completedItems, progress.totalItems));
  try {
    co_await sleepFor(kExecutionWait);
  } catch (const std::exception& failure) {
    self->logger_->error("❌ Completion execution failed: {}", failure.what());
    self->updateCompletionStatus();
    throw;
  }
  self->setCompletionStatus(CompletionStatus::readyForSubmission());
  self->logger_->info("🎉 Completion executed successfully");
}

const AggregateCompletionGuide::EntityItems& AggregateCompletionGuide::entityCompletionItems() const {
  observationRegistrar().access("entityCompletionItems");
  return entityCompletionItems_;
}

std::vector<CompletionItem> AggregateCompletionGuide::allItems() const {
  Items all;
  for (const auto& [id, items] : entityCompletionItems()) all.insert(all.end(), items.begin(), items.end());
  return all;
}

void AggregateCompletionGuide::updateCompletionStatus() {
  const auto counts = tally(entityCompletionItems());
  const auto p = counts.progress();
  const auto optionalLeft = counts.optionalLeft;
  CompletionStatus status = CompletionStatus::inProgress(p.completedItems, p.totalItems);
  if (p.completedItems == 0 && p.totalItems == 0) {
    status = CompletionStatus::notStarted();
  } else if (p.blockedItems > 0) {
    status = CompletionStatus::hasBlockingIssues(p.blockedItems);
  } else if (p.completedItems == p.totalItems) {
    status = CompletionStatus::readyForSubmission();
  } else if (p.completedItems < p.totalItems && optionalLeft > 0 && counts.allRequiredCompleted) {
    status = CompletionStatus::hasOptionalItems(optionalLeft);
  }
  setCompletionStatus(status);
  logger_->debug("📊 Completion status updated: {}", describe(status));
}

void AggregateCompletionGuide::setCompletionStatus(CompletionStatus status) {
  // Observers hear of every write, also one that leaves the value as it was.
  observationRegistrar().withMutation("completionStatus", [&] { completionStatus_ = std::move(status); });
}

}  // namespace corvane

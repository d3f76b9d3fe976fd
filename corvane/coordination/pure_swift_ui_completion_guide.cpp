#include "corvane/coordination/pure_swift_ui_completion_guide.hpp"

#include "corvane/completion/completion_error.hpp"
#include "corvane/support/precondition.hpp"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace corvane {

namespace {

using Features = std::vector<std::shared_ptr<SubmissionFeature>>;
using Items = std::vector<CompletionItem>;

// Asked afresh on every read: a feature whose items change is seen at the next one.
Items allItems(const Features& features) {
  Items items;
  for (const auto& feature : features) {
    auto created = feature->createCompletionItems();
    items.insert(items.end(), std::make_move_iterator(created.begin()), std::make_move_iterator(created.end()));
  }
  return items;
}

Items withRequiredness(Items items, bool required) {
  std::erase_if(items, [required](const auto& item) { return isRequired(item.priority) != required; });
  return items;
}

std::int64_t countCompleted(const Items& items) {
  return std::count_if(items.begin(), items.end(), [](const auto& item) { return item.status.isCompleted(); });
}

bool allRequiredCompleted(const Features& features) {
  const auto required = withRequiredness(allItems(features), true);
  return countCompleted(required) == static_cast<std::int64_t>(required.size());
}

boost::asio::awaitable<void> completeWhenRequirementsMet(Features features) {
  if (!allRequiredCompleted(features)) throw CompletionError::requirementsNotMet();
  co_return;
}

}  // namespace

PureSwiftUICompletionGuide::PureSwiftUICompletionGuide(Features entities) : entities_(std::move(entities)) {
  CORVANE_PRECONDITION(std::none_of(entities_.begin(), entities_.end(), [](const auto& entity) { return !entity; }),
                       "PureSwiftUICompletionGuide needs non-null entities");
}

std::vector<CompletionItem> PureSwiftUICompletionGuide::requiredItems() const {
  return withRequiredness(allItems(entities_), true);
}

std::vector<CompletionItem> PureSwiftUICompletionGuide::optionalItems() const {
  return withRequiredness(allItems(entities_), false);
}

CompletionStatus PureSwiftUICompletionGuide::completionStatus() const {
  const auto required = requiredItems();
  if (required.empty()) return CompletionStatus::notStarted();
  const auto done = countCompleted(required);
  const auto total = static_cast<std::int64_t>(required.size());
  if (done == total) return CompletionStatus::readyForSubmission();
  return CompletionStatus::inProgress(done, total);
}

CompletionProgress PureSwiftUICompletionGuide::completionProgress() const {
  const auto items = allItems(entities_);
  const std::int64_t required =
      std::count_if(items.begin(), items.end(), [](const auto& item) { return isRequired(item.priority); });
  const auto total = static_cast<std::int64_t>(items.size());
  // Blocked items are deliberately left out: this guide never reports blocking issues.
  return CompletionProgress{countCompleted(items), total, required, total - required, 0};
}

bool PureSwiftUICompletionGuide::canComplete() const {
  return allRequiredCompleted(entities_);
}

boost::asio::awaitable<void> PureSwiftUICompletionGuide::refreshCompletion() {
  co_return;
}

boost::asio::awaitable<void> PureSwiftUICompletionGuide::executeCompletion() {
  return completeWhenRequirementsMet(entities_);
}

}  // namespace corvane

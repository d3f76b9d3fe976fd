#include "corvane/completion/completion_item.hpp"

namespace corvane {

using Status = CompletionItem::CompletionStatus;

Status Status::blocked(std::string reason) {
  return CompletionStatus(Blocked{std::move(reason)});
}
Status Status::completed() {
  return CompletionStatus(Completed{});
}
Status Status::missing() {
  return CompletionStatus(Missing{});
}
Status Status::optional() {
  return CompletionStatus(Optional{});
}
Status Status::inProgress() {
  return CompletionStatus(InProgress{});
}

std::optional<CompletionItem::Priority> CompletionItem::priorityFromRawValue(int rawValue) noexcept {
  for (Priority priority : allPriorities()) {
    if (corvane::rawValue(priority) == rawValue) return priority;
  }
  return std::nullopt;
}

CompletionItem::CompletionItem(std::string id_, std::string title_, std::string description_, CompletionStatus status_,
                               Priority priority_, std::optional<std::string> category_)
    : id(std::move(id_)),
      title(std::move(title_)),
      description(std::move(description_)),
      status(std::move(status_)),
      priority(priority_),
      category(std::move(category_)) {}

}  // namespace corvane

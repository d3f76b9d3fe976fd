#pragma once

#include <cstdint>

namespace corvane {

/// Counts over all items of a completion guide. A plain record: the guide fills it in,
/// nothing checks that the counts agree with one another.
struct CompletionProgress {
  /// Items whose status is `completed`.
  std::int64_t completedItems;
  /// All items.
  std::int64_t totalItems;
  /// Items of priority `required` or `critical`.
  std::int64_t requiredItems;
  /// Items of priority `optional` or `recommended`.
  std::int64_t optionalItems;
  /// Items whose status is `blocked`.
  std::int64_t blockedItems;

  /// Whether at least one item is blocked.
  bool hasBlockingIssues() const noexcept { return blockedItems > 0; }

  /// Whether every item is completed and none is blocked; an empty progress is complete.
  bool isComplete() const noexcept { return completedItems == totalItems && blockedItems == 0; }

  /// completed / total as a fraction (not multiplied by 100); 0.0 when total is below 1.
  double progressPercentage() const noexcept {
    if (totalItems < 1) return 0.0;
    return static_cast<double>(completedItems) / static_cast<double>(totalItems);
  }
};

}  // namespace corvane

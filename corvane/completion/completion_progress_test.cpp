#include "corvane/completion/completion_progress.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

// Counts are completed, total, required, optional, blocked. Totals below one give zero
// rather than a division; completion needs exactly zero blocked items.
TEST(CompletionProgress, PercentageCompletionAndBlockingFollowTheCounts) {
  struct Row {
    const char* name;
    CompletionProgress progress;
    double percentage;
    bool complete;
    bool blocking;
  };
  const Row rows[] = {
      {"all zero", {0, 0, 0, 0, 0}, 0.0, true, false},
      {"three of four", {3, 4, 2, 2, 0}, 0.75, false, false},
      {"more done than total", {5, 4, 0, 0, 0}, 1.25, false, false},
      {"a third", {1, 3, 0, 0, 0}, 1.0 / 3.0, false, false},
      {"zero total", {2, 0, 0, 0, 0}, 0.0, false, false},
      {"negative total", {2, -4, 0, 0, 0}, 0.0, false, false},
      {"all negative", {-2, -4, 0, 0, 0}, 0.0, false, false},
      {"all done", {4, 4, 4, 0, 0}, 1.0, true, false},
      {"one blocked", {4, 4, 4, 0, 1}, 1.0, false, true},
      {"one left", {3, 4, 4, 0, 0}, 0.75, false, false},
      {"negative blocked count", {4, 4, 4, 0, -1}, 1.0, false, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_DOUBLE_EQ(row.progress.progressPercentage(), row.percentage);
    EXPECT_EQ(row.progress.isComplete(), row.complete);
    EXPECT_EQ(row.progress.hasBlockingIssues(), row.blocking);
  }
}

}  // namespace
}  // namespace corvane

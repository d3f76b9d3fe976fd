#include "corvane/completion/completion_progress.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(CompletionProgress, AllZeroIsCompleteWithZeroProgress) {
  const CompletionProgress progress{0, 0, 0, 0, 0};
  EXPECT_EQ(progress.progressPercentage(), 0.0);
  EXPECT_TRUE(progress.isComplete());
  EXPECT_FALSE(progress.hasBlockingIssues());
}

TEST(CompletionProgress, PercentageIsTheCompletedFraction) {
  const CompletionProgress threeOfFour{3, 4, 2, 2, 0};
  EXPECT_DOUBLE_EQ(threeOfFour.progressPercentage(), 0.75);
  EXPECT_FALSE(threeOfFour.isComplete());
  EXPECT_DOUBLE_EQ((CompletionProgress{5, 4, 0, 0, 0}.progressPercentage()), 1.25);
  EXPECT_DOUBLE_EQ((CompletionProgress{1, 3, 0, 0, 0}.progressPercentage()), 1.0 / 3.0);
}

TEST(CompletionProgress, TotalsBelowOneGiveZeroRatherThanADivision) {
  EXPECT_EQ((CompletionProgress{2, 0, 0, 0, 0}.progressPercentage()), 0.0);
  EXPECT_EQ((CompletionProgress{2, -4, 0, 0, 0}.progressPercentage()), 0.0);
  EXPECT_EQ((CompletionProgress{-2, -4, 0, 0, 0}.progressPercentage()), 0.0);
}

TEST(CompletionProgress, BlockedItemsBlockAndPreventCompletion) {
  const CompletionProgress blocked{4, 4, 4, 0, 1};
  EXPECT_TRUE(blocked.hasBlockingIssues());
  EXPECT_FALSE(blocked.isComplete());
  EXPECT_TRUE((CompletionProgress{4, 4, 4, 0, 0}.isComplete()));
  EXPECT_FALSE((CompletionProgress{3, 4, 4, 0, 0}.isComplete()));
  // Completion needs exactly zero blocked items; a negative count is not a blocking issue
  // either.
  const CompletionProgress negative{4, 4, 4, 0, -1};
  EXPECT_FALSE(negative.hasBlockingIssues());
  EXPECT_FALSE(negative.isComplete());
}

}  // namespace
}  // namespace corvane

#include "corvane/completion/completion_status.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

namespace corvane {
namespace {

using Limits = std::numeric_limits<std::int64_t>;

TEST(CompletionStatus, InProgressPercentageIsAnUnclampedFractionOfAPositiveTotalAndZeroOtherwise) {
  struct Case {
    std::int64_t completed;
    std::int64_t total;
    double percentage;
  };
  const Case cases[] = {{2, 5, 0.4}, {5, 4, 1.25}, {4, 4, 1.0},  {1, 1, 1.0},   {Limits::max(), Limits::max(), 1.0},
                        {0, 0, 0.0}, {3, 0, 0.0},  {3, -2, 0.0}, {-3, -2, 0.0}, {0, Limits::min(), 0.0}};
  for (const Case& c : cases) {
    const auto status = CompletionStatus::inProgress(c.completed, c.total);
    EXPECT_EQ(status.progressPercentage(), c.percentage) << describe(status);
  }
}

TEST(CompletionStatus, BlockingAndOptionalStatesCountAsMostlyDoneWhateverTheCount) {
  for (std::int64_t count : {std::int64_t{0}, std::int64_t{1}, std::int64_t{7}, std::int64_t{-1}, Limits::max()}) {
    EXPECT_DOUBLE_EQ(CompletionStatus::hasBlockingIssues(count).progressPercentage(), 0.8) << count;
    EXPECT_DOUBLE_EQ(CompletionStatus::hasOptionalItems(count).progressPercentage(), 0.8) << count;
  }
  EXPECT_EQ(CompletionStatus::notStarted().progressPercentage(), 0.0);
  EXPECT_EQ(CompletionStatus::readyForSubmission().progressPercentage(), 1.0);
}

TEST(CompletionStatus, OnlyOptionalItemsAndReadyMayProceed) {
  EXPECT_TRUE(CompletionStatus::hasOptionalItems(0).canProceed());
  EXPECT_TRUE(CompletionStatus::hasOptionalItems(3).canProceed());
  EXPECT_TRUE(CompletionStatus::readyForSubmission().canProceed());
  EXPECT_FALSE(CompletionStatus::inProgress(4, 4).canProceed());
  EXPECT_FALSE(CompletionStatus::inProgress(0, 0).canProceed());
  EXPECT_FALSE(CompletionStatus::hasBlockingIssues(0).canProceed());
  EXPECT_FALSE(CompletionStatus::hasBlockingIssues(2).canProceed());
  EXPECT_FALSE(CompletionStatus::notStarted().canProceed());
}

TEST(CompletionStatus, EqualityComparesCaseAndPayload) {
  EXPECT_EQ(CompletionStatus::inProgress(1, 2), CompletionStatus::inProgress(1, 2));
  EXPECT_NE(CompletionStatus::inProgress(1, 2), CompletionStatus::inProgress(2, 1));
  EXPECT_NE(CompletionStatus::inProgress(1, 2), CompletionStatus::inProgress(1, 3));
  EXPECT_NE(CompletionStatus::hasBlockingIssues(1), CompletionStatus::hasBlockingIssues(2));
  EXPECT_NE(CompletionStatus::hasBlockingIssues(1), CompletionStatus::hasOptionalItems(1));
  EXPECT_NE(CompletionStatus::notStarted(), CompletionStatus::readyForSubmission());
}

TEST(CompletionStatus, EachCaseAnswersOnlyItsOwnQuery) {
  const std::vector<CompletionStatus> statuses{
      CompletionStatus::inProgress(1, 2), CompletionStatus::hasBlockingIssues(1), CompletionStatus::hasOptionalItems(1),
      CompletionStatus::notStarted(), CompletionStatus::readyForSubmission()};
  for (std::size_t i = 0; i < statuses.size(); ++i) {
    const CompletionStatus& s = statuses[i];
    const std::vector<bool> answers{s.isInProgress(), s.isHasBlockingIssues(), s.isHasOptionalItems(), s.isNotStarted(),
                                    s.isReadyForSubmission()};
    for (std::size_t j = 0; j < answers.size(); ++j) EXPECT_EQ(answers[j], i == j) << describe(s) << " query " << j;
  }
  ASSERT_NE(statuses[0].getIf<CompletionStatus::InProgress>(), nullptr);
  EXPECT_EQ(statuses[0].getIf<CompletionStatus::InProgress>()->total, 2);
}

TEST(CompletionStatus, DescribesCaseNameWithPayload) {
  EXPECT_EQ(describe(CompletionStatus::inProgress(2, 5)), "inProgress(completed: 2, total: 5)");
  EXPECT_EQ(describe(CompletionStatus::inProgress(-1, 0)), "inProgress(completed: -1, total: 0)");
  EXPECT_EQ(describe(CompletionStatus::hasBlockingIssues(3)), "hasBlockingIssues(count: 3)");
  EXPECT_EQ(describe(CompletionStatus::hasOptionalItems(1)), "hasOptionalItems(count: 1)");
  EXPECT_EQ(describe(CompletionStatus::notStarted()), "notStarted");
  EXPECT_EQ(describe(CompletionStatus::readyForSubmission()), "readyForSubmission");
}

}  // namespace
}  // namespace corvane

#include "corvane/submission/submission_configuration.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

using Strategy = SubmissionConfiguration::ValidationStrategy;
using AutoSubmit = SubmissionConfiguration::AutoSubmitStrategy;

TEST(SubmissionConfiguration, DefaultEnablesEverythingAndDebouncesBy300Milliseconds) {
  const SubmissionConfiguration& configuration = SubmissionConfiguration::default_();
  EXPECT_TRUE(configuration.enableChangeTracking);
  EXPECT_TRUE(configuration.enableValidation);
  EXPECT_TRUE(configuration.enableCompletionGuide);
  EXPECT_EQ(configuration.autoSubmitStrategy, AutoSubmit::manual);
  ASSERT_TRUE(configuration.validationStrategy.isDebounced());
  EXPECT_EQ(configuration.validationStrategy.getIf<Strategy::Debounced>()->milliseconds, 300);
  EXPECT_EQ(configuration.maxConcurrentValidations, 3);
}

TEST(SubmissionConfiguration, MemberwiseConstructorKeepsTheOrder) {
  const SubmissionConfiguration configuration(false, true, false, AutoSubmit::onCompletion, Strategy::batch(), 7);
  EXPECT_FALSE(configuration.enableChangeTracking);
  EXPECT_TRUE(configuration.enableValidation);
  EXPECT_FALSE(configuration.enableCompletionGuide);
  EXPECT_EQ(configuration.autoSubmitStrategy, AutoSubmit::onCompletion);
  EXPECT_TRUE(configuration.validationStrategy.isBatch());
  EXPECT_EQ(configuration.maxConcurrentValidations, 7);
}

TEST(SubmissionConfigurationValidationStrategy, EachCaseAnswersOnlyItsOwnQuery) {
  const std::vector<Strategy> strategies{Strategy::debounced(5), Strategy::immediate(), Strategy::onDemand(),
                                         Strategy::batch()};
  for (std::size_t i = 0; i < strategies.size(); ++i) {
    const Strategy& s = strategies[i];
    const std::vector<bool> answers{s.isDebounced(), s.isImmediate(), s.isOnDemand(), s.isBatch()};
    for (std::size_t j = 0; j < answers.size(); ++j) EXPECT_EQ(answers[j], i == j) << i << " query " << j;
  }
  EXPECT_EQ(strategies[0].getIf<Strategy::Debounced>()->milliseconds, 5);
  EXPECT_EQ(strategies[1].getIf<Strategy::Debounced>(), nullptr);
}

}  // namespace
}  // namespace corvane

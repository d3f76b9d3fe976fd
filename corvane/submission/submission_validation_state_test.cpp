#include "corvane/submission/submission_validation_state.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

using Severity = SubmissionValidationIssue::Severity;
using State = SubmissionValidationState;

SubmissionValidationIssue issue(Severity severity, std::string id = "id") {
  return SubmissionValidationIssue{std::move(id), severity, "t", "d", {}, {}, {}};
}

TEST(SubmissionValidationState, OnlyValidAndErrorFreeInvalidStatesMayProceed) {
  EXPECT_TRUE(State::valid().canProceed());
  EXPECT_FALSE(State::validating().canProceed());
  EXPECT_FALSE(State::unknown().canProceed());
  EXPECT_TRUE(State::invalid({}).canProceed());
  EXPECT_TRUE(State::invalid({issue(Severity::warning), issue(Severity::info)}).canProceed());
  EXPECT_FALSE(State::invalid({issue(Severity::error)}).canProceed());
  EXPECT_FALSE(State::invalid({issue(Severity::warning), issue(Severity::error), issue(Severity::info)}).canProceed());
  EXPECT_FALSE(State::invalid({issue(Severity::info), issue(Severity::warning), issue(Severity::error)}).canProceed());
}

TEST(SubmissionValidationState, EqualityComparesCaseAndIssues) {
  EXPECT_EQ(State::invalid({issue(Severity::error, "a")}), State::invalid({issue(Severity::error, "a")}));
  EXPECT_NE(State::invalid({issue(Severity::error, "a")}), State::invalid({issue(Severity::error, "b")}));
  EXPECT_NE(State::invalid({issue(Severity::error, "a")}), State::invalid({}));
  const std::vector<State> states{State::invalid({}), State::valid(), State::validating(), State::unknown()};
  for (std::size_t i = 0; i < states.size(); ++i) {
    for (std::size_t j = 0; j < states.size(); ++j) EXPECT_EQ(states[i] == states[j], i == j) << i << " vs " << j;
  }
}

TEST(SubmissionValidationState, EachCaseAnswersOnlyItsOwnQuery) {
  const std::vector<State> states{State::invalid({issue(Severity::info)}), State::valid(), State::validating(),
                                  State::unknown()};
  for (std::size_t i = 0; i < states.size(); ++i) {
    const State& s = states[i];
    const std::vector<bool> answers{s.isInvalid(), s.isValid(), s.isValidating(), s.isUnknown()};
    for (std::size_t j = 0; j < answers.size(); ++j) EXPECT_EQ(answers[j], i == j) << i << " query " << j;
  }
  ASSERT_NE(states[0].getIf<State::Invalid>(), nullptr);
  EXPECT_EQ(states[0].getIf<State::Invalid>()->issues, std::vector{issue(Severity::info)});
}

}  // namespace
}  // namespace corvane

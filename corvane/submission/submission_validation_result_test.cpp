#include "corvane/submission/submission_validation_result.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <set>
#include <string>

namespace corvane {
namespace {

using Severity = SubmissionValidationIssue::Severity;
using Clock = std::chrono::system_clock;

// The canonical 36-character UUID form in upper case: 8-4-4-4-12 hexadecimal digits.
bool isUpperCaseUuid(const std::string& text) {
  if (text.size() != 36) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (i == 8 || i == 13 || i == 18 || i == 23) {
      if (c != '-') return false;
    } else if (!std::isdigit(static_cast<unsigned char>(c)) && !(c >= 'A' && c <= 'F')) {
      return false;
    }
  }
  return true;
}

TEST(SubmissionValidationResult, ValidIsOneSharedPassingResultWithAFixedTimestamp) {
  const SubmissionValidationResult& first = SubmissionValidationResult::valid();
  const auto after = Clock::now();
  const SubmissionValidationResult& second = SubmissionValidationResult::valid();
  EXPECT_EQ(&first, &second);
  EXPECT_EQ(first.validatedAt, second.validatedAt);
  EXPECT_LE(first.validatedAt, after);
  EXPECT_TRUE(first.isValid);
  EXPECT_TRUE(first.issues.empty());
  // A copy keeps the stamp: it is the moment of first use, not of the read.
  const SubmissionValidationResult copy = SubmissionValidationResult::valid();
  EXPECT_EQ(copy.validatedAt, first.validatedAt);
}

TEST(SubmissionValidationResult, InvalidHoldsOneErrorIssue) {
  const auto before = Clock::now();
  const auto result = SubmissionValidationResult::invalid("x", "e");
  const auto after = Clock::now();
  EXPECT_FALSE(result.isValid);
  ASSERT_EQ(result.issues.size(), 1u);
  const SubmissionValidationIssue& issue = result.issues[0];
  EXPECT_TRUE(isUpperCaseUuid(issue.id)) << issue.id;
  EXPECT_EQ(issue.severity, Severity::error);
  EXPECT_EQ(issue.title, "Validation Error");
  EXPECT_EQ(issue.description, "x");
  EXPECT_EQ(issue.entityId, "e");
  EXPECT_FALSE(issue.propertyKey);
  EXPECT_FALSE(issue.suggestedAction);
  EXPECT_EQ(result.errors(), result.issues);
  EXPECT_TRUE(result.warnings().empty());
  EXPECT_GE(result.validatedAt, before);
  EXPECT_LE(result.validatedAt, after);
  EXPECT_FALSE(SubmissionValidationResult::invalid("x").issues[0].entityId);
}

TEST(SubmissionValidationResult, WarningPassesWithOneWarningIssue) {
  const auto before = Clock::now();
  const auto result = SubmissionValidationResult::warning("x");
  const auto after = Clock::now();
  EXPECT_TRUE(result.isValid);
  EXPECT_TRUE(result.errors().empty());
  ASSERT_EQ(result.warnings().size(), 1u);
  const SubmissionValidationIssue issue = result.warnings()[0];
  EXPECT_TRUE(isUpperCaseUuid(issue.id)) << issue.id;
  EXPECT_EQ(issue.severity, Severity::warning);
  EXPECT_EQ(issue.title, "Validation Warning");
  EXPECT_EQ(issue.description, "x");
  EXPECT_FALSE(issue.entityId);
  EXPECT_FALSE(issue.propertyKey);
  EXPECT_FALSE(issue.suggestedAction);
  EXPECT_GE(result.validatedAt, before);
  EXPECT_LE(result.validatedAt, after);
  EXPECT_EQ(SubmissionValidationResult::warning("x", "e").issues[0].entityId, "e");
}

TEST(SubmissionValidationResult, FactoryIdsAreDistinct) {
  std::set<std::string> ids;
  for (int i = 0; i < 50; ++i) {
    ids.insert(SubmissionValidationResult::invalid("x").issues[0].id);
    ids.insert(SubmissionValidationResult::warning("x").issues[0].id);
  }
  EXPECT_EQ(ids.size(), 100u);
}

TEST(SubmissionValidationResult, ErrorsAndWarningsKeepTheirOrderAndSkipInfos) {
  auto issue = [](std::string id, Severity severity) {
    return SubmissionValidationIssue{std::move(id), severity, "t", "d", {}, {}, {}};
  };
  const SubmissionValidationResult result{
      false,
      {issue("w1", Severity::warning), issue("e1", Severity::error), issue("i1", Severity::info),
       issue("e2", Severity::error), issue("w2", Severity::warning)},
      Clock::now()};
  EXPECT_EQ(result.errors(), (std::vector{issue("e1", Severity::error), issue("e2", Severity::error)}));
  EXPECT_EQ(result.warnings(), (std::vector{issue("w1", Severity::warning), issue("w2", Severity::warning)}));
}

}  // namespace
}  // namespace corvane

#include "corvane/submission/submission_validation_result.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <optional>
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

TEST(SubmissionValidationResult, ValidIsAPassingResultStampedOnceAtFirstUse) {
  const SubmissionValidationResult first = SubmissionValidationResult::valid();
  const auto after = Clock::now();
  EXPECT_TRUE(first.isValid);
  EXPECT_TRUE(first.issues.empty());
  EXPECT_LE(first.validatedAt, after);
  // Let the clock tick past the first read, so that a stamp renewed on each read shows.
  while (Clock::now() <= after) {
  }
  EXPECT_EQ(SubmissionValidationResult::valid().validatedAt, first.validatedAt);
}

TEST(SubmissionValidationResult, FactoriesHoldOneFreshlyStampedIssue) {
  using Issues = std::vector<SubmissionValidationIssue>;
  struct Case {
    SubmissionValidationResult result;
    bool isValid;
    Severity severity;
    std::string title;
    std::optional<std::string> entityId;
  };
  const auto before = Clock::now();
  const Case cases[] = {
      {SubmissionValidationResult::invalid("x", "e"), false, Severity::error, "Validation Error", "e"},
      {SubmissionValidationResult::invalid("x"), false, Severity::error, "Validation Error", std::nullopt},
      {SubmissionValidationResult::warning("x"), true, Severity::warning, "Validation Warning", std::nullopt},
      {SubmissionValidationResult::warning("x", "e"), true, Severity::warning, "Validation Warning", "e"},
  };
  const auto after = Clock::now();
  for (const Case& c : cases) {
    const SubmissionValidationResult& result = c.result;
    const std::string context = c.title + " for " + c.entityId.value_or("no entity");
    EXPECT_EQ(result.isValid, c.isValid) << context;
    ASSERT_EQ(result.issues.size(), 1u) << context;
    const SubmissionValidationIssue& issue = result.issues[0];
    EXPECT_TRUE(isUpperCaseUuid(issue.id)) << context << ": " << issue.id;
    EXPECT_EQ(issue.severity, c.severity) << context;
    EXPECT_EQ(issue.title, c.title) << context;
    EXPECT_EQ(issue.description, "x") << context;
    EXPECT_EQ(issue.entityId, c.entityId) << context;
    EXPECT_FALSE(issue.propertyKey) << context;
    EXPECT_FALSE(issue.suggestedAction) << context;
    EXPECT_EQ(result.errors(), c.isValid ? Issues{} : result.issues) << context;
    EXPECT_EQ(result.warnings(), c.isValid ? result.issues : Issues{}) << context;
    EXPECT_GE(result.validatedAt, before) << context;
    EXPECT_LE(result.validatedAt, after) << context;
  }
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

#include "corvane/submission/submission_validation_issue.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace corvane {
namespace {

using Severity = SubmissionValidationIssue::Severity;

TEST(SubmissionValidationIssueSeverity, RawValuesAreTheLowerCaseNamesInOrder) {
  const auto all = SubmissionValidationIssue::allSeverities();
  ASSERT_EQ(all.size(), 3u);
  EXPECT_EQ(all[0], Severity::error);
  EXPECT_EQ(all[1], Severity::warning);
  EXPECT_EQ(all[2], Severity::info);
  EXPECT_EQ(rawValue(Severity::error), "error");
  EXPECT_EQ(rawValue(Severity::warning), "warning");
  EXPECT_EQ(rawValue(Severity::info), "info");
  for (Severity severity : all)
    EXPECT_EQ(SubmissionValidationIssue::severityFromRawValue(rawValue(severity)), severity);
}

TEST(SubmissionValidationIssueSeverity, ParsingIsExactAndCaseSensitive) {
  for (const char* text : {"Error", "ERROR", "error ", " error", "", "warn", "infos", "Info"}) {
    EXPECT_FALSE(SubmissionValidationIssue::severityFromRawValue(text)) << '"' << text << '"';
  }
}

SubmissionValidationIssue sampleIssue() {
  return SubmissionValidationIssue{"id", Severity::warning, "Title", "Description", "entity", "key", "Do it"};
}

TEST(SubmissionValidationIssue, EqualityComparesEveryMember) {
  EXPECT_EQ(sampleIssue(), sampleIssue());
  const std::vector<std::function<void(SubmissionValidationIssue&)>> changes{
      [](auto& issue) { issue.id = "other"; },
      [](auto& issue) { issue.severity = Severity::error; },
      [](auto& issue) { issue.title = "other"; },
      [](auto& issue) { issue.description = "other"; },
      [](auto& issue) { issue.entityId = std::nullopt; },
      [](auto& issue) { issue.propertyKey = "other"; },
      [](auto& issue) { issue.suggestedAction = std::nullopt; },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SubmissionValidationIssue changed = sampleIssue();
    changes[i](changed);
    EXPECT_NE(changed, sampleIssue()) << "change " << i;
  }
}

}  // namespace
}  // namespace corvane

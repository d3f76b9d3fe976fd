#include "corvane/submission/submission_validation_issue.hpp"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <vector>

namespace corvane {
namespace {

using Severity = SubmissionValidationIssue::Severity;

TEST(SubmissionValidationIssueSeverity, RawValuesAreTheLowerCaseNamesInOrder) {
  const auto all = SubmissionValidationIssue::allSeverities();
  EXPECT_EQ(all, (std::array{Severity::error, Severity::warning, Severity::info}));
  const char* const names[] = {"error", "warning", "info"};
  for (std::size_t i = 0; i < all.size(); ++i) {
    EXPECT_EQ(rawValue(all[i]), names[i]);
    EXPECT_EQ(SubmissionValidationIssue::severityFromRawValue(names[i]), all[i]) << names[i];
  }
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

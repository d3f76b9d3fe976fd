#include "corvane/submission/submission_validation_result.hpp"

#include "corvane/support/uuid.hpp"

#include <algorithm>
#include <iterator>

namespace corvane {

namespace {

using Severity = SubmissionValidationIssue::Severity;

std::vector<SubmissionValidationIssue> withSeverity(const std::vector<SubmissionValidationIssue>& issues,
                                                    Severity severity) {
  std::vector<SubmissionValidationIssue> selected;
  std::copy_if(issues.begin(), issues.end(), std::back_inserter(selected),
               [severity](const SubmissionValidationIssue& issue) { return issue.severity == severity; });
  return selected;
}

SubmissionValidationResult singleIssue(bool isValid, Severity severity, std::string title, std::string message,
                                       std::optional<std::string> entityId) {
  std::vector<SubmissionValidationIssue> issues;
  issues.push_back(SubmissionValidationIssue{
      .id = newUppercaseUuidString(),
      .severity = severity,
      .title = std::move(title),
      .description = std::move(message),
      .entityId = std::move(entityId),
      .propertyKey = std::nullopt,
      .suggestedAction = std::nullopt,
  });
  return SubmissionValidationResult{isValid, std::move(issues), std::chrono::system_clock::now()};
}

}  // namespace

std::vector<SubmissionValidationIssue> SubmissionValidationResult::errors() const {
  return withSeverity(issues, Severity::error);
}

std::vector<SubmissionValidationIssue> SubmissionValidationResult::warnings() const {
  return withSeverity(issues, Severity::warning);
}

const SubmissionValidationResult& SubmissionValidationResult::valid() {
  static const SubmissionValidationResult shared{true, {}, std::chrono::system_clock::now()};
  return shared;
}

SubmissionValidationResult SubmissionValidationResult::invalid(std::string message,
                                                               std::optional<std::string> entityId) {
  return singleIssue(false, Severity::error, "Validation Error", std::move(message), std::move(entityId));
}

SubmissionValidationResult SubmissionValidationResult::warning(std::string message,
                                                               std::optional<std::string> entityId) {
  return singleIssue(true, Severity::warning, "Validation Warning", std::move(message), std::move(entityId));
}

}  // namespace corvane

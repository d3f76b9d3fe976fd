#include "corvane/submission/submission_validation_issue.hpp"

#include "corvane/support/precondition.hpp"

namespace corvane {

std::optional<SubmissionValidationIssue::Severity> SubmissionValidationIssue::severityFromRawValue(
    std::string_view rawValue) noexcept {
  for (Severity severity : allSeverities()) {
    if (corvane::rawValue(severity) == rawValue) return severity;
  }
  return std::nullopt;
}

std::string_view rawValue(SubmissionValidationIssue::Severity severity) noexcept {
  switch (severity) {
    case SubmissionValidationIssue::Severity::error:
      return "error";
    case SubmissionValidationIssue::Severity::warning:
      return "warning";
    case SubmissionValidationIssue::Severity::info:
      return "info";
  }
  detail::preconditionFailure("not a SubmissionValidationIssue::Severity");
}

}  // namespace corvane

#include "corvane/submission/submission_validation_state.hpp"

#include <algorithm>

namespace corvane {

SubmissionValidationState SubmissionValidationState::invalid(std::vector<SubmissionValidationIssue> issues) {
  return SubmissionValidationState(Invalid{std::move(issues)});
}
SubmissionValidationState SubmissionValidationState::valid() {
  return SubmissionValidationState(Valid{});
}
SubmissionValidationState SubmissionValidationState::validating() {
  return SubmissionValidationState(Validating{});
}
SubmissionValidationState SubmissionValidationState::unknown() {
  return SubmissionValidationState(Unknown{});
}

bool SubmissionValidationState::canProceed() const noexcept {
  if (isValid()) return true;
  const auto* invalid = getIf<Invalid>();
  if (invalid == nullptr) return false;
  return std::none_of(invalid->issues.begin(), invalid->issues.end(), [](const SubmissionValidationIssue& issue) {
    return issue.severity == SubmissionValidationIssue::Severity::error;
  });
}

}  // namespace corvane

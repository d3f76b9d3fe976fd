#include "corvane/completion/completion_error.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/support/precondition.hpp"

namespace corvane {

CompletionError::CompletionError(Kind kind, std::exception_ptr underlying, std::string description)
    : kind_(kind),
      underlying_(std::move(underlying)),
      description_(std::make_shared<const std::string>(std::move(description))) {}

CompletionError CompletionError::executionFailed(std::exception_ptr underlying) {
  CORVANE_PRECONDITION(underlying, "CompletionError::executionFailed needs an underlying error");
  std::string description = "Completion failed: " + corvane::errorDescription(underlying);
  return CompletionError(Kind::executionFailed, std::move(underlying), std::move(description));
}

CompletionError CompletionError::unknown(std::exception_ptr underlying) {
  CORVANE_PRECONDITION(underlying, "CompletionError::unknown needs an underlying error");
  std::string description = "Unknown completion error: " + corvane::errorDescription(underlying);
  return CompletionError(Kind::unknown, std::move(underlying), std::move(description));
}

CompletionError CompletionError::requirementsNotMet() {
  return CompletionError(Kind::requirementsNotMet, nullptr, "Cannot complete - not all requirements are met");
}

CompletionError CompletionError::hasBlockingIssues() {
  return CompletionError(Kind::hasBlockingIssues, nullptr,
                         "Cannot complete - there are blocking issues that need to be resolved");
}

CompletionError CompletionError::timeout() {
  return CompletionError(Kind::timeout, nullptr, "Completion timed out");
}

CompletionError CompletionError::cancelled() {
  return CompletionError(Kind::cancelled, nullptr, "Completion was cancelled");
}

}  // namespace corvane

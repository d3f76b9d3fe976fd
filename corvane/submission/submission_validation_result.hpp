#pragma once

#include "corvane/submission/submission_validation_issue.hpp"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// The outcome of one submission validation: whether it passed, what it found and when.
struct SubmissionValidationResult {
  /// Whether the validated value may be submitted.
  bool isValid;
  /// Everything found, in the order found.
  std::vector<SubmissionValidationIssue> issues;
  /// When the validation ran.
  std::chrono::system_clock::time_point validatedAt;

  /// The issues of severity `error`, in their order.
  std::vector<SubmissionValidationIssue> errors() const;

  /// The issues of severity `warning`, in their order.
  std::vector<SubmissionValidationIssue> warnings() const;

  /// The one shared passing result: valid, no issues, stamped when first asked for and
  /// never again, so every read gives the same `validatedAt`.
  static const SubmissionValidationResult& valid();

  /// A failing result stamped now with one `error` issue titled "Validation Error", whose
  /// description is `message`, with the given entity id and a fresh upper-case UUID as id.
  static SubmissionValidationResult invalid(std::string message, std::optional<std::string> entityId = {});

  /// A passing result (a warning does not invalidate) stamped now with one `warning` issue
  /// titled "Validation Warning", whose description is `message`, with the given entity id
  /// and a fresh upper-case UUID as id.
  static SubmissionValidationResult warning(std::string message, std::optional<std::string> entityId = {});
};

}  // namespace corvane

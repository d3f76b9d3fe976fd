#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace corvane {

/// Counts over a set of submission issues, as a validator reports them.
struct SubmissionValidationSummary {
  /// All issues.
  std::int64_t totalIssues;
  /// Issues of severity `error`.
  std::int64_t errorCount;
  /// Issues of severity `warning`.
  std::int64_t warningCount;
  /// Whether no issue is an error.
  bool isValid;
  /// When the issues were last collected, if ever.
  std::optional<std::chrono::system_clock::time_point> lastValidation;
};

}  // namespace corvane

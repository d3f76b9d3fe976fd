#pragma once

#include <exception>
#include <memory>
#include <string>

namespace corvane {

/// The typed error of completion execution. `errorDescription()` and `what()` give the
/// same text; the two cases that wrap an underlying error append that error's own
/// description (its `what()`, or "unknown error" for an exception that is not a
/// `std::exception`) directly to their prefix.
class CompletionError : public std::exception {
 public:
  /// The cases, in their canonical order.
  enum class Kind { executionFailed, unknown, requirementsNotMet, hasBlockingIssues, timeout, cancelled };

  /// Completion failed because of `underlying`: "Completion failed: " + its description.
  /// `underlying` must hold an exception.
  static CompletionError executionFailed(std::exception_ptr underlying);
  /// An unexpected `underlying` error: "Unknown completion error: " + its description.
  /// `underlying` must hold an exception.
  static CompletionError unknown(std::exception_ptr underlying);
  /// "Cannot complete - not all requirements are met".
  static CompletionError requirementsNotMet();
  /// "Cannot complete - there are blocking issues that need to be resolved".
  static CompletionError hasBlockingIssues();
  /// "Completion timed out".
  static CompletionError timeout();
  /// "Completion was cancelled".
  static CompletionError cancelled();

  /// The case.
  Kind kind() const noexcept { return kind_; }

  /// The wrapped error for `executionFailed` and `unknown`; null for the other cases.
  const std::exception_ptr& underlyingError() const noexcept { return underlying_; }

  /// The readable description; never empty.
  const std::string& errorDescription() const noexcept { return *description_; }

  /// The same text as `errorDescription()`.
  const char* what() const noexcept override { return description_->c_str(); }

 private:
  CompletionError(Kind kind, std::exception_ptr underlying, std::string description);

  Kind kind_;
  std::exception_ptr underlying_;
  // Shared so that copying the error (as exception handling does) cannot throw.
  std::shared_ptr<const std::string> description_;
};

}  // namespace corvane

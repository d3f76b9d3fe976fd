#pragma once

#include "corvane/submission/submission_validation_issue.hpp"

#include <utility>
#include <variant>
#include <vector>

namespace corvane {

/// Where the validation of a submission stands, as a screen shows it.
class SubmissionValidationState {
 public:
  /// Validation found `issues`; whether they block depends on their severities.
  struct Invalid {
    std::vector<SubmissionValidationIssue> issues;
    friend bool operator==(const Invalid&, const Invalid&) = default;
  };
  /// Validation passed.
  struct Valid {
    friend bool operator==(const Valid&, const Valid&) = default;
  };
  /// Validation is running.
  struct Validating {
    friend bool operator==(const Validating&, const Validating&) = default;
  };
  /// Nothing has been validated yet.
  struct Unknown {
    friend bool operator==(const Unknown&, const Unknown&) = default;
  };

  /// The cases, in their canonical order.
  using Value = std::variant<Invalid, Valid, Validating, Unknown>;

  /// An `invalid` state carrying `issues` (which may be empty).
  static SubmissionValidationState invalid(std::vector<SubmissionValidationIssue> issues);
  /// The `valid` state.
  static SubmissionValidationState valid();
  /// The `validating` state.
  static SubmissionValidationState validating();
  /// The `unknown` state.
  static SubmissionValidationState unknown();

  /// Whether the case is `invalid`, whatever its issues.
  bool isInvalid() const noexcept { return std::holds_alternative<Invalid>(value_); }
  /// Whether the case is `valid`.
  bool isValid() const noexcept { return std::holds_alternative<Valid>(value_); }
  /// Whether the case is `validating`.
  bool isValidating() const noexcept { return std::holds_alternative<Validating>(value_); }
  /// Whether the case is `unknown`.
  bool isUnknown() const noexcept { return std::holds_alternative<Unknown>(value_); }

  /// Whether submission may go ahead: always for `valid`, never while `validating` or
  /// `unknown`, and for `invalid` exactly when none of its issues is an error (so an
  /// `invalid` state with only warnings, or with no issues at all, may proceed).
  bool canProceed() const noexcept;

  /// The payload of case `Case`, or null when the state is another case.
  template <class Case>
  const Case* getIf() const noexcept {
    return std::get_if<Case>(&value_);
  }

  /// The underlying variant, for exhaustive visiting.
  const Value& value() const noexcept { return value_; }

  /// Same case and, for `invalid`, equal issue lists.
  friend bool operator==(const SubmissionValidationState&, const SubmissionValidationState&) = default;

 private:
  template <class Case>
  explicit SubmissionValidationState(Case value) : value_(std::in_place_type<Case>, std::move(value)) {}
  Value value_;
};

}  // namespace corvane

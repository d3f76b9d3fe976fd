#pragma once

#include "corvane/submission/submission_validation_issue.hpp"
#include "corvane/support/tagged_variant.hpp"

#include <utility>
#include <variant>
#include <vector>

namespace corvane {

namespace detail {
/// The cases of `SubmissionValidationState`, reached as `SubmissionValidationState::<Case>`.
struct SubmissionValidationStateCases {
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
};
}  // namespace detail

/// Where the validation of a submission stands, as a screen shows it.
class SubmissionValidationState : public TaggedVariant<detail::SubmissionValidationStateCases> {
 public:
  /// An `invalid` state carrying `issues` (which may be empty).
  static SubmissionValidationState invalid(std::vector<SubmissionValidationIssue> issues);
  /// The `valid` state.
  static SubmissionValidationState valid();
  /// The `validating` state.
  static SubmissionValidationState validating();
  /// The `unknown` state.
  static SubmissionValidationState unknown();

  /// Whether the case is `invalid`, whatever its issues.
  bool isInvalid() const noexcept { return holds<Invalid>(); }
  /// Whether the case is `valid`.
  bool isValid() const noexcept { return holds<Valid>(); }
  /// Whether the case is `validating`.
  bool isValidating() const noexcept { return holds<Validating>(); }
  /// Whether the case is `unknown`.
  bool isUnknown() const noexcept { return holds<Unknown>(); }

  /// Whether submission may go ahead: always for `valid`, never while `validating` or
  /// `unknown`, and for `invalid` exactly when none of its issues is an error (so an
  /// `invalid` state with only warnings, or with no issues at all, may proceed).
  bool canProceed() const noexcept;

  /// Same case and, for `invalid`, equal issue lists.
  friend bool operator==(const SubmissionValidationState&, const SubmissionValidationState&) = default;

 private:
  using TaggedVariant::TaggedVariant;
};

}  // namespace corvane

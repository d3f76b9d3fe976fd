#pragma once

#include "corvane/support/tagged_variant.hpp"

#include <exception>
#include <string>
#include <variant>
#include <vector>

namespace corvane {

namespace detail {
/// The cases of `ChangeTrackingError`, reached as `ChangeTrackingError::<Case>`.
struct ChangeTrackingErrorCases {
  /// Some entity's verdict does not pass.
  struct SubmissionBlocked {
    std::string reason;
    std::vector<std::string> details;
  };
  /// No entity is registered under the identifier.
  struct EntityNotFound {
    std::string entityId;
  };
  /// A save failed; the tracker itself never raises this, hosts may.
  struct SubmissionFailed {
    std::exception_ptr error;
  };
  /// No registered entity has unsaved changes.
  struct NothingToSubmit {};

  /// The cases, in their canonical order.
  using Value = std::variant<SubmissionBlocked, EntityNotFound, SubmissionFailed, NothingToSubmit>;
};
}  // namespace detail

/// Why a unified change tracker refused to submit. `what()` and `errorDescription()` give
/// the text for people; `describe()` names the case and its payload.
class ChangeTrackingError : public std::exception, public TaggedVariant<detail::ChangeTrackingErrorCases> {
 public:
  /// The cases, in their canonical order.
  using Case = Value;

  static ChangeTrackingError submissionBlocked(std::string reason, std::vector<std::string> details);
  static ChangeTrackingError entityNotFound(std::string entityId);
  static ChangeTrackingError submissionFailed(std::exception_ptr error);
  static ChangeTrackingError nothingToSubmit();

  /// "Cannot submit: <the one detail>" or "Cannot submit: <reason> (<n> issues)";
  /// "Could not find entity '<id>'"; "Submission failed: <the error's description>";
  /// "No changes to submit to App Store".
  const std::string& errorDescription() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  explicit ChangeTrackingError(Case value);

  std::string description_;
};

/// The case as written in code, e.g. `nothingToSubmit` or
/// `entityNotFound("id")`: the default textual rendering of the error.
std::string describe(const ChangeTrackingError& error);

}  // namespace corvane

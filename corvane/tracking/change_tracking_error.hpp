#pragma once

#include <exception>
#include <string>
#include <variant>
#include <vector>

namespace corvane {

/// Why a unified change tracker refused to submit. `what()` and `errorDescription()` give
/// the text for people; `describe()` names the case and its payload.
class ChangeTrackingError : public std::exception {
 public:
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

  using Case = std::variant<SubmissionBlocked, EntityNotFound, SubmissionFailed, NothingToSubmit>;

  static ChangeTrackingError submissionBlocked(std::string reason, std::vector<std::string> details);
  static ChangeTrackingError entityNotFound(std::string entityId);
  static ChangeTrackingError submissionFailed(std::exception_ptr error);
  static ChangeTrackingError nothingToSubmit();

  /// "Cannot submit: <the one detail>" or "Cannot submit: <reason> (<n> issues)";
  /// "Could not find entity '<id>'"; "Submission failed: <the error's description>";
  /// "No changes to submit to App Store".
  const std::string& errorDescription() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

  /// The case and its payload.
  const Case& value() const noexcept { return case_; }
  /// The case's payload when the error is of that case, otherwise null.
  template <class C>
  const C* getIf() const noexcept {
    return std::get_if<C>(&case_);
  }

 private:
  explicit ChangeTrackingError(Case value);

  Case case_;
  std::string description_;
};

/// The case as written in code, e.g. `nothingToSubmit` or
/// `entityNotFound("id")`: the default textual rendering of the error.
std::string describe(const ChangeTrackingError& error);

}  // namespace corvane

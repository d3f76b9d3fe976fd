#pragma once

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/submission/submission_validation_issue.hpp"
#include "corvane/submission/submission_validation_result.hpp"
#include "corvane/submission/submission_validation_state.hpp"
#include "corvane/submission/submission_validation_summary.hpp"

#include <boost/asio/awaitable.hpp>

#include <vector>

namespace corvane {

/// A validator of a whole submission: whether it may go ahead, which issues block or only
/// warn, and a summary for display.
class Validatable : public Observable {
 public:
  virtual ~Validatable() = default;

  /// Whether no issue blocks submission.
  virtual bool isValid() const = 0;

  /// The issues of severity `error`.
  virtual std::vector<SubmissionValidationIssue> blockingIssues() const = 0;

  /// The issues of severity `warning`.
  virtual std::vector<SubmissionValidationIssue> warningIssues() const = 0;

  /// The state to show.
  virtual SubmissionValidationState validationState() const = 0;

  /// Validates the submission.
  virtual boost::asio::awaitable<SubmissionValidationResult> validate() = 0;

  /// Counts of the current issues.
  virtual SubmissionValidationSummary getValidationSummary() const = 0;

 protected:
  Validatable() = default;
};

}  // namespace corvane

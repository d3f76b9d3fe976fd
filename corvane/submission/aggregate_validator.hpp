#pragma once

#include "corvane/submission/submission_feature.hpp"
#include "corvane/submission/submission_validation_issue.hpp"
#include "corvane/submission/submission_validation_result.hpp"
#include "corvane/submission/submission_validation_state.hpp"
#include "corvane/submission/submission_validation_summary.hpp"
#include "corvane/submission/validatable.hpp"

#include <boost/asio/awaitable.hpp>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

namespace testing {
struct AggregateValidatorAccess;
}  // namespace testing

/// The coordinator's validator: it lists the features registered for submission and keeps,
/// per entity id, the producers of their issues; validity, the blocking and warning issues,
/// the state and the summary are derived from what those producers report, on every read.
///
/// Registration files a producer that reports nothing (feature rules are not wired in), so
/// every derived value reports success and `validate()` always passes.
///
/// Observed keys: "entities", "entityValidators".
class AggregateValidator final : public Validatable {
 public:
  /// Reports the current issues of one entity.
  using IssueProducer = std::function<std::vector<SubmissionValidationIssue>()>;

  /// A validator with nothing registered.
  AggregateValidator() = default;

  /// Appends `feature` (not null) to `entities()`, even when it is listed already, and
  /// files one producer that reports nothing under its entity id, replacing whatever was
  /// filed there.
  void register_(std::shared_ptr<SubmissionFeature> feature);

  /// Removes every listed feature whose entity id is `feature`'s, and the producers filed
  /// under that id.
  void unregister(const SubmissionFeature& feature);

  /// The registered features in registration order; a feature registered twice is listed
  /// twice.
  const std::vector<std::shared_ptr<SubmissionFeature>>& entities() const;

  /// The issue producers by entity id, in id order.
  const std::map<std::string, std::vector<IssueProducer>>& entityValidators() const;

  /// Whether no collected issue is an error. Also reads every feature's
  /// `hasUnsavedChanges()`, so that observers of the verdict follow the features' edits.
  bool isValid() const override;

  /// The collected issues of severity `error`, in collected order.
  std::vector<SubmissionValidationIssue> blockingIssues() const override;

  /// The collected issues of severity `warning`, in collected order.
  std::vector<SubmissionValidationIssue> warningIssues() const override;

  /// `valid` when nothing is collected, otherwise `invalid` with every collected issue,
  /// whatever its severity. Never `validating` or `unknown`.
  SubmissionValidationState validationState() const override;

  /// A passing result without issues, stamped now. Runs no producer.
  boost::asio::awaitable<SubmissionValidationResult> validate() override;

  /// The counts of the collected issues, stamped now.
  SubmissionValidationSummary getValidationSummary() const override;

 private:
  friend struct testing::AggregateValidatorAccess;

  // Every producer's issues, concatenated in id order.
  std::vector<SubmissionValidationIssue> collectedIssues() const;

  std::vector<std::shared_ptr<SubmissionFeature>> entities_;
  std::map<std::string, std::vector<IssueProducer>> entityValidators_;
};

}  // namespace corvane

#include "corvane/submission/aggregate_validator.hpp"

#include "corvane/support/precondition.hpp"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>

namespace corvane {

namespace {

using Issues = std::vector<SubmissionValidationIssue>;
using Severity = SubmissionValidationIssue::Severity;

// Severities are compared by raw value, as everywhere in the submission layer.
bool hasSeverity(const SubmissionValidationIssue& issue, Severity severity) {
  return rawValue(issue.severity) == rawValue(severity);
}

Issues withSeverity(const Issues& issues, Severity severity) {
  Issues matching;
  std::copy_if(issues.begin(), issues.end(), std::back_inserter(matching),
               [severity](const auto& issue) { return hasSeverity(issue, severity); });
  return matching;
}

std::int64_t countWithSeverity(const Issues& issues, Severity severity) {
  return std::count_if(issues.begin(), issues.end(),
                       [severity](const auto& issue) { return hasSeverity(issue, severity); });
}

}  // namespace

void AggregateValidator::register_(std::shared_ptr<SubmissionFeature> feature) {
  CORVANE_PRECONDITION(feature != nullptr, "AggregateValidator::register_ needs a feature");
  const std::string id = feature->entityId();
  observationRegistrar().withMutation("entities", [&] { entities_.push_back(std::move(feature)); });
  observationRegistrar().withMutation("entityValidators", [&] {
    entityValidators_.insert_or_assign(id, std::vector<IssueProducer>{[] { return Issues{}; }});
  });
}

void AggregateValidator::unregister(const SubmissionFeature& feature) {
  const std::string id = feature.entityId();
  observationRegistrar().withMutation(
      "entities", [&] { std::erase_if(entities_, [&](const auto& entity) { return entity->entityId() == id; }); });
  observationRegistrar().withMutation("entityValidators", [&] { entityValidators_.erase(id); });
}

const std::vector<std::shared_ptr<SubmissionFeature>>& AggregateValidator::entities() const {
  observationRegistrar().access("entities");
  return entities_;
}

const std::map<std::string, std::vector<AggregateValidator::IssueProducer>>& AggregateValidator::entityValidators()
    const {
  observationRegistrar().access("entityValidators");
  return entityValidators_;
}

std::vector<SubmissionValidationIssue> AggregateValidator::collectedIssues() const {
  Issues issues;
  for (const auto& [id, producers] : entityValidators()) {
    for (const auto& produce : producers) {
      auto produced = produce();
      issues.insert(issues.end(), std::make_move_iterator(produced.begin()), std::make_move_iterator(produced.end()));
    }
  }
  return issues;
}

bool AggregateValidator::isValid() const {
  // The flags do not enter the verdict; reading them registers the dependency.
  for (const auto& entity : entities()) static_cast<void>(entity->hasUnsavedChanges());
  return countWithSeverity(collectedIssues(), Severity::error) == 0;
}

std::vector<SubmissionValidationIssue> AggregateValidator::blockingIssues() const {
  return withSeverity(collectedIssues(), Severity::error);
}

std::vector<SubmissionValidationIssue> AggregateValidator::warningIssues() const {
  return withSeverity(collectedIssues(), Severity::warning);
}

SubmissionValidationState AggregateValidator::validationState() const {
  auto issues = collectedIssues();
  if (issues.empty()) return SubmissionValidationState::valid();
  return SubmissionValidationState::invalid(std::move(issues));
}

boost::asio::awaitable<SubmissionValidationResult> AggregateValidator::validate() {
  co_return SubmissionValidationResult{true, {}, std::chrono::system_clock::now()};
}

SubmissionValidationSummary AggregateValidator::getValidationSummary() const {
  const auto issues = collectedIssues();
  const auto errors = countWithSeverity(issues, Severity::error);
  return SubmissionValidationSummary{static_cast<std::int64_t>(issues.size()), errors,
                                     countWithSeverity(issues, Severity::warning), errors == 0,
                                     std::chrono::system_clock::now()};
}

}  // namespace corvane

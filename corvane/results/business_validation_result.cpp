#include "corvane/results/business_validation_result.hpp"

#include "corvane/support/precondition.hpp"

namespace corvane {
namespace {

ValidationSeverity severityOf(BusinessImpact::RejectionSeverity severity) {
  switch (severity) {
    case BusinessImpact::RejectionSeverity::high:
      return ValidationSeverity::error;
    case BusinessImpact::RejectionSeverity::medium:
    case BusinessImpact::RejectionSeverity::low:
      return ValidationSeverity::warning;
  }
  detail::preconditionFailure("not a BusinessImpact::RejectionSeverity");
}

struct SchemeOf {
  ValidationColorScheme operator()(const BusinessImpact::Blocker&) const { return ValidationColorScheme::critical; }
  ValidationColorScheme operator()(const BusinessImpact::RejectionRisk& risk) const {
    return risk.severity == BusinessImpact::RejectionSeverity::high ? ValidationColorScheme::error
                                                                    : ValidationColorScheme::warning;
  }
  ValidationColorScheme operator()(const BusinessImpact::Suboptimal&) const {
    return ValidationColorScheme::suggestion;
  }
  ValidationColorScheme operator()(const BusinessImpact::Opportunity&) const {
    return ValidationColorScheme::opportunity;
  }
};

struct LegacySeverityOf {
  ValidationSeverity operator()(const BusinessImpact::Blocker&) const { return ValidationSeverity::critical; }
  ValidationSeverity operator()(const BusinessImpact::RejectionRisk& risk) const { return severityOf(risk.severity); }
  ValidationSeverity operator()(const BusinessImpact::Suboptimal&) const { return ValidationSeverity::warning; }
  ValidationSeverity operator()(const BusinessImpact::Opportunity&) const { return ValidationSeverity::info; }
};

}  // namespace

ValidationColorScheme BusinessValidationResult::colorScheme() const {
  return std::visit(SchemeOf{}, businessImpact.value());
}

bool BusinessValidationResult::isSuccess() const {
  return businessImpact.isSuboptimal() || businessImpact.isOpportunity();
}

bool BusinessValidationResult::shouldShowImmediately() const {
  return displayTiming.isImmediate();
}

ValidationResult BusinessValidationResult::asLegacyResult() const {
  std::optional<std::string> fix;
  if (actionGuidance) fix = actionGuidance->primaryAction.description;
  return ValidationResult(!blocksSubmission, std::visit(LegacySeverityOf{}, businessImpact.value()), userMessage,
                          std::move(fix));
}

}  // namespace corvane

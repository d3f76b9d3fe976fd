#include "corvane/tracking/empty_value_rule.hpp"

#include "corvane/text/characters.hpp"

namespace corvane::detail {

ValidationResult emptyValueVerdict(ValidationRequirement requirement, bool isEmpty, const std::string& field) {
  const bool isRequired = requirement == ValidationRequirement::required;
  auto verdict = [](bool isValid, ValidationSeverity severity, std::string message,
                    std::optional<BusinessImpact> impact) {
    return ValidationResult(isValid, severity, std::move(message), std::nullopt, std::nullopt, std::move(impact),
                            std::nullopt, std::nullopt);
  };
  if (isEmpty && isRequired) {
    return verdict(false, ValidationSeverity::critical, field + " is required",
                   BusinessImpact::blocker("Required field"));
  }
  if (isEmpty) {
    return verdict(true, ValidationSeverity::info, "Consider selecting " + lowercased(field),
                   BusinessImpact::opportunity("Optional selection"));
  }
  return verdict(true, ValidationSeverity::none, field + " is valid",
                 isRequired ? std::optional(BusinessImpact::blocker("Required field")) : std::nullopt);
}

}  // namespace corvane::detail

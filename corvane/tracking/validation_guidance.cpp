#include "corvane/tracking/validation_guidance.hpp"

namespace corvane {

ValidationGuidance ValidationGuidance::missingOptional(std::string what, std::string benefit) {
  return ValidationGuidance(MissingOptional{std::move(what), std::move(benefit)});
}

ValidationGuidance ValidationGuidance::opportunity(std::string title, std::string benefit,
                                                   ActionGuidance::Action action) {
  return ValidationGuidance(Opportunity{std::move(title), std::move(benefit), std::move(action)});
}

ValidationGuidance ValidationGuidance::custom(ValidationResult result) {
  return ValidationGuidance(Custom{std::move(result)});
}

}  // namespace corvane

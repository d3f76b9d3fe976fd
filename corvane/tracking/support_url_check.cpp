#include "corvane/tracking/support_url_check.hpp"

namespace corvane {

ValidationResult supportURLCheck(std::string_view url) {
  if (url.empty() || url.starts_with("https://") || url.starts_with("http://")) return ValidationResult::valid();
  return ValidationResult(false, ValidationSeverity::warning, "Support URL should start with https://", std::nullopt,
                          std::nullopt, BusinessImpact::suboptimal("URL format"), std::nullopt, std::nullopt);
}

}  // namespace corvane

#include "corvane/tracking/validation_rule.hpp"

#include "corvane/text/characters.hpp"

#include <cstdint>
#include <utility>
#include <variant>

namespace corvane {
namespace {

using Severity = ValidationSeverity;

// A verdict carrying at most a business impact, as the rule language builds its own.
ValidationResult leanVerdict(bool isValid, Severity severity, std::string message,
                             std::optional<BusinessImpact> impact = std::nullopt) {
  return ValidationResult(isValid, severity, std::move(message), std::nullopt, std::nullopt, std::move(impact),
                          std::nullopt, std::nullopt);
}

struct Declaration {
  std::string field;
  ValidationRequirement requirement;
  std::vector<ValidationCheck> checks;
  std::optional<ValidationGuidance> guidance;

  bool isRequired() const { return requirement == ValidationRequirement::required; }

  ValidationResult operator()(const std::string& value) const;
};

// Judges one value against one check or guidance; `std::nullopt` lets the rule go on.
class Judge {
 public:
  Judge(const Declaration& declaration, const std::string& value)
      : declaration_(declaration), value_(value), text_(trimmed(value)) {}

  bool isBlank() const { return text_.empty(); }

  std::optional<ValidationResult> operator()(const ValidationCheck::TooLong& check) {
    if (characters() <= check.limit) return std::nullopt;
    return ValidationResult::tooLong(declaration_.field, check.limit, characters(), [] {});
  }

  std::optional<ValidationResult> operator()(const ValidationCheck::TooShort& check) {
    if (characters() >= check.minimum) return std::nullopt;
    return leanVerdict(false, Severity::warning,
                       declaration_.field + " should be at least " + std::to_string(check.minimum) + " characters",
                       BusinessImpact::suboptimal("Length optimization"));
  }

  std::optional<ValidationResult> operator()(const ValidationCheck::Custom& check) { return check.check(value_); }

  std::optional<ValidationResult> operator()(const ValidationCheck::Empty&) {
    if (!isBlank()) return std::nullopt;
    return ValidationResult::required(declaration_.field,
                                      "App Store requires this information to process your submission");
  }

  std::optional<ValidationResult> operator()(const ValidationGuidance::MissingOptional& guidance) {
    if (!isBlank() || declaration_.isRequired()) return std::nullopt;
    return leanVerdict(true, Severity::info, "Consider adding " + guidance.what,
                       BusinessImpact::opportunity(guidance.benefit));
  }

  std::optional<ValidationResult> operator()(const ValidationGuidance::Opportunity& guidance) {
    if (!isBlank()) return std::nullopt;
    return ValidationResult::opportunity(guidance.title, guidance.benefit, guidance.action);
  }

  std::optional<ValidationResult> operator()(const ValidationGuidance::Custom& guidance) { return guidance.result; }

 private:
  // Counted at most once, and only when a length check asks: values may be long.
  std::int64_t characters() {
    if (!characters_) characters_ = static_cast<std::int64_t>(characterCount(text_));
    return *characters_;
  }

  const Declaration& declaration_;
  const std::string& value_;
  std::string_view text_;
  std::optional<std::int64_t> characters_;
};

ValidationResult Declaration::operator()(const std::string& value) const {
  Judge judge(*this, value);
  if (isRequired() && judge.isBlank()) {
    return leanVerdict(false, Severity::critical, field + " is required", BusinessImpact::blocker("Required field"));
  }
  for (const auto& check : checks) {
    if (auto verdict = std::visit(judge, check.value())) return *std::move(verdict);
  }
  if (guidance) {
    if (auto verdict = std::visit(judge, guidance->value())) return *std::move(verdict);
  }
  return leanVerdict(true, Severity::none, field + " is valid",
                     isRequired() ? std::optional(BusinessImpact::blocker("Required field")) : std::nullopt);
}

}  // namespace

std::function<ValidationResult(const std::string&)> makeValidationRule(std::optional<std::string> field,
                                                                       ValidationRequirement requirement,
                                                                       std::vector<ValidationCheck> checks,
                                                                       std::optional<ValidationGuidance> guidance) {
  return Declaration{std::move(field).value_or("Field"), requirement, std::move(checks), std::move(guidance)};
}

}  // namespace corvane

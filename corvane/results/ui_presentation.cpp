#include "corvane/results/validation_result.hpp"

#include "corvane/support/precondition.hpp"

namespace corvane {
namespace {

using AnimationType = ValidationResult::UIPresentation::AnimationType;

// One row per severity. The symbols are deliberately asymmetric: none and info fill the
// valid symbol, error and critical the invalid one, and warning changes shape.
struct SeverityLook {
  const char* colorName;
  const char* validIcon;
  const char* invalidIcon;
  AnimationType animation;
  const char* validFallback;
  const char* invalidFallback;
};

SeverityLook lookOf(ValidationSeverity severity) {
  switch (severity) {
    case ValidationSeverity::none:
      return {"green", "checkmark.circle.fill", "checkmark.circle", AnimationType::none, "Valid", "Invalid state"};
    case ValidationSeverity::info:
      return {"blue", "info.circle.fill", "info.circle", AnimationType::none, "Valid", "Invalid info"};
    case ValidationSeverity::warning:
      return {"orange",
              "exclamationmark.circle.fill",
              "exclamationmark.triangle.fill",
              AnimationType::subtle,
              "Valid with warnings",
              "Warning"};
    case ValidationSeverity::error:
      return {"red", "xmark.circle", "xmark.circle.fill", AnimationType::subtle, "Error (valid)", "Invalid"};
    case ValidationSeverity::critical:
      return {"red",
              "exclamationmark.octagon",
              "exclamationmark.octagon.fill",
              AnimationType::pulse,
              "Critical (valid)",
              "Critical error"};
  }
  detail::preconditionFailure("not a ValidationSeverity");
}

}  // namespace

ValidationResult::UIPresentation ValidationResult::uiPresentation() const {
  const SeverityLook look = lookOf(severity);
  return UIPresentation{
      .colorName = look.colorName,
      .iconName = isValid ? look.validIcon : look.invalidIcon,
      .shouldShowIndicator = true,
      .displayMessage = !message.empty() ? message : (isValid ? look.validFallback : look.invalidFallback),
      .animationType = look.animation,
  };
}

std::string describe(ValidationResult::UIPresentation::AnimationType animation) {
  switch (animation) {
    case AnimationType::none:
      return "none";
    case AnimationType::subtle:
      return "subtle";
    case AnimationType::pulse:
      return "pulse";
  }
  detail::preconditionFailure("not a ValidationResult::UIPresentation::AnimationType");
}

}  // namespace corvane

#include "corvane/results/validation_result.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using Severity = ValidationSeverity;
using Presentation = ValidationResult::UIPresentation;
using Animation = Presentation::AnimationType;

struct Look {
  Severity severity;
  bool isValid;
  const char* color;
  const char* icon;
  const char* fallback;
  Animation animation;
};

// Every severity in both validities. The symbols are asymmetric on purpose: none and
// info fill the valid one, error and critical the invalid one, warning changes shape.
const Look kLooks[] = {
    {Severity::none, true, "green", "checkmark.circle.fill", "Valid", Animation::none},
    {Severity::none, false, "green", "checkmark.circle", "Invalid state", Animation::none},
    {Severity::info, true, "blue", "info.circle.fill", "Valid", Animation::none},
    {Severity::info, false, "blue", "info.circle", "Invalid info", Animation::none},
    {Severity::warning, true, "orange", "exclamationmark.circle.fill", "Valid with warnings", Animation::subtle},
    {Severity::warning, false, "orange", "exclamationmark.triangle.fill", "Warning", Animation::subtle},
    {Severity::error, true, "red", "xmark.circle", "Error (valid)", Animation::subtle},
    {Severity::error, false, "red", "xmark.circle.fill", "Invalid", Animation::subtle},
    {Severity::critical, true, "red", "exclamationmark.octagon", "Critical (valid)", Animation::pulse},
    {Severity::critical, false, "red", "exclamationmark.octagon.fill", "Critical error", Animation::pulse},
};

TEST(UIPresentation, EmptyMessagesFallBackBySeverityAndValidity) {
  for (const Look& look : kLooks) {
    SCOPED_TRACE(describe(look.severity) + (look.isValid ? " valid" : " invalid"));
    const auto presentation = ValidationResult(look.isValid, look.severity, "").uiPresentation();
    EXPECT_EQ(presentation, (Presentation{.colorName = look.color,
                                          .iconName = look.icon,
                                          .shouldShowIndicator = true,
                                          .displayMessage = look.fallback,
                                          .animationType = look.animation}));
  }
}

TEST(UIPresentation, NonEmptyMessagesAreShownAsTheyAre) {
  for (const Look& look : kLooks) {
    SCOPED_TRACE(describe(look.severity) + (look.isValid ? " valid" : " invalid"));
    const auto presentation = ValidationResult(look.isValid, look.severity, "Name is taken").uiPresentation();
    EXPECT_EQ(presentation.displayMessage, "Name is taken");
    EXPECT_EQ(presentation.iconName, look.icon);
    EXPECT_EQ(presentation.colorName, look.color);
    EXPECT_TRUE(presentation.shouldShowIndicator);
  }
}

TEST(UIPresentation, DependsOnlyOnValiditySeverityAndMessage) {
  // The business fields do not change the look: an invalid critical result looks the same
  // whether it came from `required` or from a bare failure.
  const auto required = ValidationResult::required("Name").uiPresentation();
  const auto bare = ValidationResult::failure(Severity::critical, "Name is required").uiPresentation();
  EXPECT_EQ(required, bare);
  EXPECT_EQ(required.colorName, "red");
  EXPECT_EQ(required.iconName, "exclamationmark.octagon.fill");
  EXPECT_EQ(required.animationType, Animation::pulse);
}

TEST(UIPresentation, SharedConstants) {
  EXPECT_EQ(ValidationResult::valid().uiPresentation(),
            (Presentation{"green", "checkmark.circle.fill", true, "Valid", Animation::none}));
  EXPECT_EQ(ValidationResult::warning().uiPresentation(),
            (Presentation{"orange", "exclamationmark.triangle.fill", true, "Warning state", Animation::subtle}));
  EXPECT_EQ(ValidationResult::info().uiPresentation(),
            (Presentation{"blue", "info.circle.fill", true, "Informational state", Animation::none}));
}

}  // namespace
}  // namespace corvane

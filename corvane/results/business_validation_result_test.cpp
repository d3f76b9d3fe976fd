#include "corvane/results/business_validation_result.hpp"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using Risk = BusinessImpact::RejectionSeverity;
using ActionType = ActionGuidance::Action::ActionType;

BusinessValidationResult businessResult(BusinessImpact impact, bool blocks = false,
                                        DisplayTiming timing = DisplayTiming::onFocus()) {
  return BusinessValidationResult{.businessImpact = std::move(impact),
                                  .blocksSubmission = blocks,
                                  .userMessage = "Message",
                                  .businessReason = std::nullopt,
                                  .actionGuidance = std::nullopt,
                                  .displayTiming = timing,
                                  .visualPriority = 10};
}

// Each impact decides the colour, whether the result counts as a success and the legacy
// severity; blocking decides only the legacy validity.
TEST(BusinessValidationResult, TheImpactDecidesColourSuccessAndLegacySeverity) {
  struct Case {
    BusinessImpact impact;
    ValidationColorScheme scheme;
    bool success;
    ValidationSeverity severity;
  };
  const Case cases[] = {
      {BusinessImpact::blocker("r"), ValidationColorScheme::critical, false, ValidationSeverity::critical},
      {BusinessImpact::rejectionRisk(Risk::high), ValidationColorScheme::error, false, ValidationSeverity::error},
      {BusinessImpact::rejectionRisk(Risk::medium), ValidationColorScheme::warning, false, ValidationSeverity::warning},
      {BusinessImpact::rejectionRisk(Risk::low), ValidationColorScheme::warning, false, ValidationSeverity::warning},
      {BusinessImpact::suboptimal("a"), ValidationColorScheme::suggestion, true, ValidationSeverity::warning},
      {BusinessImpact::opportunity("b"), ValidationColorScheme::opportunity, true, ValidationSeverity::info},
  };
  for (const auto& c : cases) {
    for (bool blocks : {false, true}) {
      SCOPED_TRACE(describe(c.impact) + (blocks ? " blocking" : " not blocking"));
      const auto result = businessResult(c.impact, blocks);
      EXPECT_EQ(result.colorScheme(), c.scheme);
      EXPECT_EQ(result.isSuccess(), c.success);
      const auto legacy = result.asLegacyResult();
      EXPECT_EQ(legacy.isValid, !blocks);
      EXPECT_EQ(legacy.severity, c.severity);
      EXPECT_EQ(legacy.message, "Message");
    }
  }
}

TEST(BusinessValidationResult, ShowsImmediatelyOnlyForImmediateTiming) {
  const auto impact = BusinessImpact::blocker("r");
  EXPECT_TRUE(businessResult(impact, true, DisplayTiming::immediate()).shouldShowImmediately());
  for (const auto& timing : {DisplayTiming::delayed(0.0), DisplayTiming::onInteraction(), DisplayTiming::onBlur(),
                             DisplayTiming::onFocus()}) {
    EXPECT_FALSE(businessResult(impact, true, timing).shouldShowImmediately()) << describe(timing);
  }
}

TEST(BusinessValidationResultLegacy, OpportunityWithoutGuidanceHasNoFix) {
  const auto legacy = businessResult(BusinessImpact::opportunity("b"), false).asLegacyResult();
  EXPECT_EQ(legacy, ValidationResult(true, ValidationSeverity::info, "Message"));
  EXPECT_FALSE(legacy.suggestedFix.has_value());
}

TEST(BusinessValidationResultLegacy, KeepsOnlyThePrimaryActionDescriptionAndDropsTheRest) {
  auto business = businessResult(BusinessImpact::rejectionRisk(Risk::high), true, DisplayTiming::immediate());
  business.userMessage = "Invalid contact email format";
  business.businessReason = "App Store needs a way to reach you";
  business.actionGuidance = ActionGuidance{
      .primaryAction = {.title = "Fix format",
                        .description = "Enter valid contact email",
                        .type = ActionType::manual({"Use format: name@example.com"})},
      .alternativeActions = {{.title = "Other", .description = "Not this one", .type = ActionType::manual({})}},
      .helpURL = Url::parse("https://example.com/help"),
      .estimatedTime = "< 1 minute",
  };

  const auto legacy = business.asLegacyResult();
  EXPECT_EQ(legacy, ValidationResult(false, ValidationSeverity::error, "Invalid contact email format",
                                     "Enter valid contact email"));
  EXPECT_FALSE(legacy.businessReason.has_value());
  EXPECT_FALSE(legacy.businessImpact.has_value());
  EXPECT_FALSE(legacy.actionGuidance.has_value());
  EXPECT_FALSE(legacy.displayBehavior.has_value());
}

TEST(BusinessValidationResult, EqualityComparesEveryField) {
  const auto base = businessResult(BusinessImpact::suboptimal("a"));
  EXPECT_EQ(base, businessResult(BusinessImpact::suboptimal("a")));
  auto differs = [&](auto change) {
    BusinessValidationResult other = base;
    change(other);
    return other != base;
  };
  EXPECT_TRUE(differs([](BusinessValidationResult& r) { r.businessImpact = BusinessImpact::suboptimal("b"); }));
  EXPECT_TRUE(differs([](BusinessValidationResult& r) { r.blocksSubmission = true; }));
  EXPECT_TRUE(differs([](BusinessValidationResult& r) { r.userMessage = "Other"; }));
  EXPECT_TRUE(differs([](BusinessValidationResult& r) { r.businessReason = "why"; }));
  EXPECT_TRUE(differs([](BusinessValidationResult& r) {
    r.actionGuidance = ActionGuidance{{"t", "d", ActionType::manual({})}, {}, std::nullopt, std::nullopt};
  }));
  EXPECT_TRUE(differs([](BusinessValidationResult& r) { r.displayTiming = DisplayTiming::onBlur(); }));
  EXPECT_TRUE(differs([](BusinessValidationResult& r) { r.visualPriority = 11; }));
}

}  // namespace
}  // namespace corvane

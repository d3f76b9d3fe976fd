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

TEST(BusinessValidationResult, ColorSchemeFollowsTheImpact) {
  EXPECT_EQ(businessResult(BusinessImpact::blocker("r")).colorScheme(), ValidationColorScheme::critical);
  EXPECT_EQ(businessResult(BusinessImpact::rejectionRisk(Risk::high)).colorScheme(), ValidationColorScheme::error);
  EXPECT_EQ(businessResult(BusinessImpact::rejectionRisk(Risk::medium)).colorScheme(), ValidationColorScheme::warning);
  EXPECT_EQ(businessResult(BusinessImpact::rejectionRisk(Risk::low)).colorScheme(), ValidationColorScheme::warning);
  EXPECT_EQ(businessResult(BusinessImpact::suboptimal("a")).colorScheme(), ValidationColorScheme::suggestion);
  EXPECT_EQ(businessResult(BusinessImpact::opportunity("b")).colorScheme(), ValidationColorScheme::opportunity);
}

TEST(BusinessValidationResult, SuccessMeansSuboptimalOrOpportunity) {
  EXPECT_TRUE(businessResult(BusinessImpact::suboptimal("a")).isSuccess());
  EXPECT_TRUE(businessResult(BusinessImpact::opportunity("b")).isSuccess());
  EXPECT_FALSE(businessResult(BusinessImpact::blocker("r")).isSuccess());
  EXPECT_FALSE(businessResult(BusinessImpact::rejectionRisk(Risk::low)).isSuccess());
  // Blocking does not enter into it.
  EXPECT_TRUE(businessResult(BusinessImpact::suboptimal("a"), /*blocks=*/true).isSuccess());
}

TEST(BusinessValidationResult, ShowsImmediatelyOnlyForImmediateTiming) {
  const auto impact = BusinessImpact::blocker("r");
  EXPECT_TRUE(businessResult(impact, true, DisplayTiming::immediate()).shouldShowImmediately());
  EXPECT_FALSE(businessResult(impact, true, DisplayTiming::delayed(0.0)).shouldShowImmediately());
  EXPECT_FALSE(businessResult(impact, true, DisplayTiming::onInteraction()).shouldShowImmediately());
  EXPECT_FALSE(businessResult(impact, true, DisplayTiming::onBlur()).shouldShowImmediately());
  EXPECT_FALSE(businessResult(impact, true, DisplayTiming::onFocus()).shouldShowImmediately());
}

TEST(BusinessValidationResultLegacy, SeverityComesFromTheImpactAndValidityFromBlocking) {
  struct Case {
    BusinessImpact impact;
    ValidationSeverity severity;
  };
  const Case cases[] = {
      {BusinessImpact::blocker("r"), ValidationSeverity::critical},
      {BusinessImpact::rejectionRisk(Risk::high), ValidationSeverity::error},
      {BusinessImpact::rejectionRisk(Risk::medium), ValidationSeverity::warning},
      {BusinessImpact::rejectionRisk(Risk::low), ValidationSeverity::warning},
      {BusinessImpact::suboptimal("a"), ValidationSeverity::warning},
      {BusinessImpact::opportunity("b"), ValidationSeverity::info},
  };
  for (const auto& c : cases) {
    for (bool blocks : {false, true}) {
      SCOPED_TRACE(describe(c.impact) + (blocks ? " blocking" : " not blocking"));
      const auto legacy = businessResult(c.impact, blocks).asLegacyResult();
      EXPECT_EQ(legacy.isValid, !blocks);
      EXPECT_EQ(legacy.severity, c.severity);
      EXPECT_EQ(legacy.message, "Message");
    }
  }
}

TEST(BusinessValidationResultLegacy, OpportunityWithoutGuidanceHasNoFix) {
  const auto legacy = businessResult(BusinessImpact::opportunity("b"), false).asLegacyResult();
  EXPECT_EQ(legacy, ValidationResult(true, ValidationSeverity::info, "Message"));
  EXPECT_FALSE(legacy.suggestedFix.has_value());
}

TEST(BusinessValidationResultLegacy, BlockingLowRiskIsAnInvalidWarning) {
  const auto legacy = businessResult(BusinessImpact::rejectionRisk(Risk::low), true).asLegacyResult();
  EXPECT_FALSE(legacy.isValid);
  EXPECT_EQ(legacy.severity, ValidationSeverity::warning);
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

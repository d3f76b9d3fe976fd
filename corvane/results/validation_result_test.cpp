#include "corvane/results/validation_result.hpp"

#include "corvane/results/validation_color_scheme.hpp"
#include "corvane/support/describe.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>

namespace corvane {
namespace {

using Action = ActionGuidance::Action;
using ActionType = Action::ActionType;
using Timing = DisplayBehavior::DisplayTiming;
using Style = DisplayBehavior::DisplayStyle;
using Severity = ValidationSeverity;

constexpr std::array kAllSeverities{Severity::none, Severity::info, Severity::warning, Severity::error,
                                    Severity::critical};

void expectNoBusinessFields(const ValidationResult& result) {
  EXPECT_FALSE(result.businessReason.has_value());
  EXPECT_FALSE(result.businessImpact.has_value());
  EXPECT_FALSE(result.actionGuidance.has_value());
  EXPECT_FALSE(result.displayBehavior.has_value());
}

std::vector<std::string> manualSteps(const Action& action) {
  const auto* manual = action.type.getIf<ActionType::Manual>();
  EXPECT_NE(manual, nullptr) << describe(action.type);
  return manual != nullptr ? manual->steps : std::vector<std::string>{};
}

// --- constructors and shared verdicts --------------------------------------------------

TEST(ValidationResultConstruction, FourArgumentFormLeavesBusinessFieldsAbsent) {
  const ValidationResult result(false, Severity::info, "Heads up", "Do this");
  EXPECT_FALSE(result.isValid);
  EXPECT_EQ(result.severity, Severity::info);
  EXPECT_EQ(result.message, "Heads up");
  EXPECT_EQ(result.suggestedFix, "Do this");
  expectNoBusinessFields(result);
  EXPECT_FALSE(ValidationResult(true, Severity::none, "").suggestedFix.has_value());
}

TEST(ValidationResultConstants, HaveTheirFixedValues) {
  struct Expected {
    const ValidationResult& constant;
    bool isValid;
    Severity severity;
    const char* message;
  };
  for (const auto& e : {Expected{ValidationResult::valid(), true, Severity::none, ""},
                        Expected{ValidationResult::invalid(), false, Severity::error, "Invalid state"},
                        Expected{ValidationResult::warning(), false, Severity::warning, "Warning state"},
                        Expected{ValidationResult::info(), true, Severity::info, "Informational state"}}) {
    SCOPED_TRACE(e.message);
    EXPECT_EQ(e.constant.isValid, e.isValid);
    EXPECT_EQ(e.constant.severity, e.severity);
    EXPECT_EQ(e.constant.message, e.message);
    EXPECT_FALSE(e.constant.suggestedFix.has_value());
    expectNoBusinessFields(e.constant);
  }
}

TEST(ValidationResultConstants, ValidRequiredCarriesABlocker) {
  const auto& result = ValidationResult::validRequired();
  EXPECT_TRUE(result.isValid);
  EXPECT_EQ(result.severity, Severity::none);
  EXPECT_EQ(result.message, "Valid required field");
  EXPECT_EQ(result.businessReason, "Required for App Store submission");
  EXPECT_EQ(result.businessImpact, BusinessImpact::blocker("Required field"));
  EXPECT_FALSE(result.actionGuidance.has_value());
  EXPECT_FALSE(result.displayBehavior.has_value());
}

// --- factories --------------------------------------------------------------------------

TEST(ValidationResultFactories, ValidRequiredNamesTheField) {
  const auto result = ValidationResult::validRequired("App Name");
  EXPECT_TRUE(result.isValid);
  EXPECT_EQ(result.severity, Severity::none);
  EXPECT_EQ(result.message, "App Name is valid");
  EXPECT_FALSE(result.suggestedFix.has_value());
  EXPECT_EQ(result.businessReason, "Required for App Store submission");
  EXPECT_EQ(result.businessImpact, BusinessImpact::blocker("Required field"));
  EXPECT_FALSE(result.actionGuidance.has_value());
  EXPECT_FALSE(result.displayBehavior.has_value());
}

TEST(ValidationResultFactories, FailureInvalidAndInfoCarryOnlyWhatTheyAreGiven) {
  const auto failure = ValidationResult::failure(Severity::warning, "Too short", "Add words");
  EXPECT_FALSE(failure.isValid);
  EXPECT_EQ(failure.severity, Severity::warning);
  EXPECT_EQ(failure.message, "Too short");
  EXPECT_EQ(failure.suggestedFix, "Add words");
  expectNoBusinessFields(failure);

  for (Severity severity : kAllSeverities) {
    EXPECT_EQ(ValidationResult::invalid(severity, "m", "f"), ValidationResult::failure(severity, "m", "f"));
    EXPECT_EQ(ValidationResult::invalid(severity, "m"), ValidationResult::failure(severity, "m"));
  }
  EXPECT_FALSE(ValidationResult::failure(Severity::error, "m").suggestedFix.has_value());

  const auto info = ValidationResult::info("Consider a subtitle", "Add one");
  EXPECT_TRUE(info.isValid);
  EXPECT_EQ(info.severity, Severity::info);
  EXPECT_EQ(info.message, "Consider a subtitle");
  EXPECT_EQ(info.suggestedFix, "Add one");
  expectNoBusinessFields(info);
}

TEST(ValidationResultFactories, RequiredBlocksAndLowersTheFieldInsideSentences) {
  const auto result = ValidationResult::required("App Name");
  EXPECT_FALSE(result.isValid);
  EXPECT_EQ(result.severity, Severity::critical);
  EXPECT_EQ(result.message, "App Name is required");
  EXPECT_FALSE(result.suggestedFix.has_value());
  EXPECT_EQ(result.businessReason, "App Store requires this information to process your submission");
  EXPECT_EQ(result.businessImpact, BusinessImpact::blocker("Required field"));

  ASSERT_TRUE(result.actionGuidance.has_value());
  const auto& guidance = *result.actionGuidance;
  EXPECT_EQ(guidance.primaryAction.title, "Add app name");
  EXPECT_EQ(guidance.primaryAction.description, "Enter your app name");
  EXPECT_EQ(manualSteps(guidance.primaryAction), (std::vector<std::string>{"Click on the field", "Enter app name"}));
  EXPECT_TRUE(guidance.alternativeActions.empty());
  EXPECT_FALSE(guidance.helpURL.has_value());
  EXPECT_EQ(guidance.estimatedTime, "< 1 minute");

  EXPECT_EQ(result.displayBehavior,
            (DisplayBehavior{.timing = Timing::immediate(), .priority = 1000, .style = Style::critical}));

  EXPECT_EQ(ValidationResult::required("Name", "Needed for search").businessReason, "Needed for search");
}

TEST(ValidationResultFactories, TooLongUpToTwiceTheLimitIsAnError) {
  const auto result = ValidationResult::tooLong("App Name", 30, 60, [] {});
  EXPECT_FALSE(result.isValid);
  EXPECT_EQ(result.severity, Severity::error);
  EXPECT_EQ(result.message, "App Name is 30 characters too long");
  EXPECT_FALSE(result.suggestedFix.has_value());
  EXPECT_EQ(result.businessReason, "App Store automatically rejects apps with app name over 30 characters");
  EXPECT_EQ(result.businessImpact, BusinessImpact::blocker("App Name exceeds limit"));
  EXPECT_EQ(result.displayBehavior,
            (DisplayBehavior{.timing = Timing::onInteraction(), .priority = 700, .style = Style::error}));
  EXPECT_EQ(result.displayPriority(), 700);
}

TEST(ValidationResultFactories, TooLongBeyondTwiceTheLimitIsCritical) {
  const auto result = ValidationResult::tooLong("App Name", 30, 61, [] {});
  EXPECT_FALSE(result.isValid);
  EXPECT_EQ(result.severity, Severity::critical);
  EXPECT_EQ(result.message, "App Name is 31 characters too long");
  EXPECT_EQ(result.displayBehavior,
            (DisplayBehavior{.timing = Timing::immediate(), .priority = 900, .style = Style::critical}));
  EXPECT_EQ(result.displayPriority(), 900);
  EXPECT_TRUE(result.showsImmediately());
}

TEST(ValidationResultFactories, TooLongOffersAnAutoTrimAndAManualEdit) {
  int trims = 0;
  const auto result = ValidationResult::tooLong("Subtitle", 30, 42, [&] { ++trims; });
  ASSERT_TRUE(result.actionGuidance.has_value());
  const auto& guidance = *result.actionGuidance;

  EXPECT_EQ(guidance.primaryAction.title, "Auto-trim to 30");
  EXPECT_EQ(guidance.primaryAction.description, "Automatically shorten to meet App Store requirements");
  ASSERT_TRUE(guidance.primaryAction.type.isAutoFix());
  EXPECT_TRUE(guidance.primaryAction.type.runAutoFix());
  EXPECT_EQ(trims, 1);

  ASSERT_EQ(guidance.alternativeActions.size(), 1u);
  const auto& manual = guidance.alternativeActions.front();
  EXPECT_EQ(manual.title, "Edit manually");
  EXPECT_EQ(manual.description, "Remove 12 characters yourself");
  EXPECT_EQ(manualSteps(manual), (std::vector<std::string>{"Remove 12 characters", "Keep the most important words",
                                                           "Make every word count"}));

  ASSERT_TRUE(guidance.helpURL.has_value());
  EXPECT_EQ(guidance.helpURL->text(), "https://developer.apple.com/app-store/product-page/");
  EXPECT_EQ(guidance.estimatedTime, "1-2 minutes");
}

TEST(ValidationResultFactories, TooLongAcceptsTheLargestRepresentableDoubling) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  const auto result = ValidationResult::tooLong("Name", kMax / 2, kMax, [] {});
  EXPECT_EQ(result.severity, Severity::critical);
  EXPECT_EQ(result.message, "Name is 4611686018427387904 characters too long");
  EXPECT_EQ(result.actionGuidance->primaryAction.title, "Auto-trim to 4611686018427387903");
}

TEST(ValidationResultFactoriesDeathTest, TooLongAbortsWhenTwiceTheLimitOverflows) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  EXPECT_DEATH(ValidationResult::tooLong("Name", kMax / 2 + 1, kMax / 2 + 2, [] {}),
               "integer overflow in multiplication");
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  EXPECT_DEATH(ValidationResult::tooLong("Name", kMin / 2 - 1, 0, [] {}), "integer overflow in multiplication");
}

TEST(ValidationResultFactoriesDeathTest, TooLongAbortsWhenTheExcessOverflows) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  EXPECT_DEATH(ValidationResult::tooLong("Name", -1, kMax, [] {}), "integer overflow in subtraction");
  EXPECT_DEATH(ValidationResult::tooLong("Name", 1, kMin, [] {}), "integer overflow in subtraction");
}

TEST(ValidationResultFactories, MissingOptionalIsValidButWarns) {
  const auto result =
      ValidationResult::missingOptional("Subtitle", "A subtitle helps people find your app", {"Open", "Type"});
  EXPECT_TRUE(result.isValid);
  EXPECT_EQ(result.severity, Severity::warning);
  EXPECT_EQ(result.message, "No subtitle added");
  EXPECT_FALSE(result.suggestedFix.has_value());
  EXPECT_EQ(result.businessReason, "A subtitle helps people find your app");
  EXPECT_EQ(result.businessImpact, BusinessImpact::suboptimal("discoverability"));

  ASSERT_TRUE(result.actionGuidance.has_value());
  EXPECT_EQ(result.actionGuidance->primaryAction.title, "Add subtitle");
  EXPECT_EQ(result.actionGuidance->primaryAction.description, "Improve your app's success");
  EXPECT_EQ(manualSteps(result.actionGuidance->primaryAction), (std::vector<std::string>{"Open", "Type"}));
  EXPECT_TRUE(result.actionGuidance->alternativeActions.empty());
  EXPECT_FALSE(result.actionGuidance->helpURL.has_value());
  EXPECT_EQ(result.actionGuidance->estimatedTime, "2-5 minutes");

  EXPECT_EQ(result.displayBehavior,
            (DisplayBehavior{.timing = Timing::delayed(3.0), .priority = 300, .style = Style::suggestion}));
  EXPECT_FALSE(result.blocksSubmission());
  EXPECT_FALSE(result.requiresImmediateAttention());
}

TEST(ValidationResultFactories, InvalidFormatRisksRejection) {
  const auto result = ValidationResult::invalidFormat("Contact Email", "name@example.com");
  EXPECT_FALSE(result.isValid);
  EXPECT_EQ(result.severity, Severity::error);
  EXPECT_EQ(result.message, "Invalid contact email format");
  EXPECT_FALSE(result.suggestedFix.has_value());
  EXPECT_EQ(result.businessReason, "App Store needs valid contact email to contact you about your app");
  EXPECT_EQ(result.businessImpact, BusinessImpact::rejectionRisk(BusinessImpact::RejectionSeverity::high));

  ASSERT_TRUE(result.actionGuidance.has_value());
  EXPECT_EQ(result.actionGuidance->primaryAction.title, "Fix format");
  EXPECT_EQ(result.actionGuidance->primaryAction.description, "Enter valid contact email");
  EXPECT_EQ(
      manualSteps(result.actionGuidance->primaryAction),
      (std::vector<std::string>{"Use format: name@example.com", "Double-check spelling", "Make sure it's accessible"}));
  EXPECT_TRUE(result.actionGuidance->alternativeActions.empty());
  EXPECT_FALSE(result.actionGuidance->helpURL.has_value());
  EXPECT_EQ(result.actionGuidance->estimatedTime, "< 1 minute");

  EXPECT_EQ(result.displayBehavior,
            (DisplayBehavior{.timing = Timing::immediate(), .priority = 950, .style = Style::error}));
}

TEST(ValidationResultFactories, OpportunityWrapsTheGivenAction) {
  const Action action{.title = "Localize", .description = "Add French", .type = ActionType::quickFix({"French"})};
  const auto result = ValidationResult::opportunity("Reach more people", "More downloads", action);
  EXPECT_TRUE(result.isValid);
  EXPECT_EQ(result.severity, Severity::info);
  EXPECT_EQ(result.message, "Reach more people");
  EXPECT_FALSE(result.suggestedFix.has_value());
  EXPECT_EQ(result.businessReason, "More downloads");
  EXPECT_EQ(result.businessImpact, BusinessImpact::opportunity("More downloads"));
  EXPECT_EQ(result.actionGuidance, (ActionGuidance{.primaryAction = action,
                                                   .alternativeActions = {},
                                                   .helpURL = std::nullopt,
                                                   .estimatedTime = "5-15 minutes"}));
  EXPECT_EQ(result.displayBehavior,
            (DisplayBehavior{.timing = Timing::onFocus(), .priority = 100, .style = Style::info}));
}

// --- derived values ---------------------------------------------------------------------

TEST(ValidationResultDerived, DisplayPriorityFallsBackToSeverity) {
  const std::vector<std::pair<Severity, std::int64_t>> defaults{{Severity::none, 0},
                                                                {Severity::info, 200},
                                                                {Severity::warning, 500},
                                                                {Severity::error, 800},
                                                                {Severity::critical, 1000}};
  for (const auto& [severity, priority] : defaults) {
    EXPECT_EQ(ValidationResult::failure(severity, "m").displayPriority(), priority) << describe(severity);
    EXPECT_EQ(ValidationResult(true, severity, "m").displayPriority(), priority) << describe(severity);
  }
  // An explicit priority wins even when it is below the severity's default.
  EXPECT_EQ(ValidationResult::required("Name").displayPriority(), 1000);
  EXPECT_EQ(ValidationResult::opportunity("t", "b", {"a", "b", ActionType::manual({})}).displayPriority(), 100);
}

TEST(ValidationResultDerived, IsOpportunityFollowsImpactWhenPresent) {
  // Without an impact: valid and info.
  EXPECT_TRUE(ValidationResult::info("Tip").isOpportunity());
  EXPECT_TRUE(ValidationResult::info().isOpportunity());
  EXPECT_FALSE(ValidationResult::failure(Severity::info, "Tip").isOpportunity());
  EXPECT_FALSE(ValidationResult(true, Severity::warning, "w").isOpportunity());
  EXPECT_FALSE(ValidationResult::valid().isOpportunity());

  // With an impact: only the opportunity case, whatever validity and severity say.
  EXPECT_TRUE(ValidationResult::opportunity("t", "b", {"a", "b", ActionType::manual({})}).isOpportunity());
  const ValidationResult invalidOpportunity(false, Severity::error, "m", std::nullopt, std::nullopt,
                                            BusinessImpact::opportunity("b"), std::nullopt, std::nullopt);
  EXPECT_TRUE(invalidOpportunity.isOpportunity());
  const ValidationResult suboptimalInfo(true, Severity::info, "m", std::nullopt, std::nullopt,
                                        BusinessImpact::suboptimal("a"), std::nullopt, std::nullopt);
  EXPECT_FALSE(suboptimalInfo.isOpportunity());
}

TEST(ValidationResultDerived, BlocksSubmission) {
  auto withImpact = [](bool valid, Severity severity, BusinessImpact impact) {
    return ValidationResult(valid, severity, "m", std::nullopt, std::nullopt, std::move(impact), std::nullopt,
                            std::nullopt);
  };
  using Risk = BusinessImpact::RejectionSeverity;

  EXPECT_TRUE(ValidationResult::validRequired("X").blocksSubmission());
  EXPECT_TRUE(ValidationResult::validRequired().blocksSubmission());
  EXPECT_TRUE(ValidationResult::required("X").blocksSubmission());
  EXPECT_TRUE(ValidationResult::failure(Severity::critical, "m").blocksSubmission());
  EXPECT_TRUE(ValidationResult::invalidFormat("Email", "a@b.c").blocksSubmission());
  EXPECT_TRUE(ValidationResult::tooLong("Name", 30, 31, [] {}).blocksSubmission());
  EXPECT_TRUE(withImpact(true, Severity::none, BusinessImpact::rejectionRisk(Risk::high)).blocksSubmission());

  EXPECT_FALSE(ValidationResult(true, Severity::critical, "m").blocksSubmission());
  EXPECT_FALSE(ValidationResult::failure(Severity::error, "m").blocksSubmission());
  EXPECT_FALSE(withImpact(false, Severity::error, BusinessImpact::rejectionRisk(Risk::medium)).blocksSubmission());
  EXPECT_FALSE(withImpact(false, Severity::error, BusinessImpact::rejectionRisk(Risk::low)).blocksSubmission());
  EXPECT_FALSE(withImpact(false, Severity::error, BusinessImpact::suboptimal("a")).blocksSubmission());
  EXPECT_FALSE(ValidationResult::missingOptional("Subtitle", "b", {}).blocksSubmission());
}

TEST(ValidationResultDerived, ShowsImmediatelyAndRequiresImmediateAttention) {
  auto withTiming = [](bool valid, Severity severity, Timing timing) {
    return ValidationResult(valid, severity, "m", std::nullopt, std::nullopt, std::nullopt, std::nullopt,
                            DisplayBehavior{.timing = timing, .priority = 1, .style = std::nullopt});
  };
  // Without display advice, criticality decides whatever the validity.
  EXPECT_TRUE(ValidationResult::failure(Severity::critical, "m").showsImmediately());
  EXPECT_TRUE(ValidationResult(true, Severity::critical, "m").showsImmediately());
  EXPECT_FALSE(ValidationResult::failure(Severity::error, "m").showsImmediately());
  // With it, only the timing does.
  EXPECT_FALSE(withTiming(false, Severity::critical, Timing::onBlur()).showsImmediately());
  EXPECT_TRUE(withTiming(true, Severity::none, Timing::immediate()).showsImmediately());
  EXPECT_FALSE(ValidationResult::tooLong("Name", 30, 40, [] {}).showsImmediately());

  // Attention: blocking or immediate, either suffices.
  EXPECT_TRUE(ValidationResult::validRequired("Name").requiresImmediateAttention());
  EXPECT_TRUE(withTiming(true, Severity::none, Timing::immediate()).requiresImmediateAttention());
  EXPECT_FALSE(withTiming(false, Severity::error, Timing::onFocus()).requiresImmediateAttention());
  EXPECT_FALSE(ValidationResult::failure(Severity::warning, "m").requiresImmediateAttention());
}

TEST(ValidationResultDerived, FullMessageAppendsTheReasonAfterABullet) {
  EXPECT_EQ(ValidationResult::failure(Severity::error, "Bad value", "Fix it").fullMessage(), "Bad value");
  EXPECT_EQ(ValidationResult::validRequired("Name").fullMessage(),
            "Name is valid \xE2\x80\xA2 Required for App Store submission");
  EXPECT_EQ(ValidationResult::required("Name", "").fullMessage(), "Name is required \xE2\x80\xA2 ");
}

// --- equality ---------------------------------------------------------------------------

TEST(ValidationResultEquality, IgnoresAutoFixCallables) {
  int first = 0;
  int second = 0;
  const auto a = ValidationResult::tooLong("Name", 30, 45, [&] { ++first; });
  const auto b = ValidationResult::tooLong("Name", 30, 45, [&] { ++second; });
  EXPECT_EQ(a, b);
  EXPECT_NE(a, ValidationResult::tooLong("Name", 30, 46, [] {}));
  EXPECT_NE(a, ValidationResult::tooLong("Title", 30, 45, [] {}));
  EXPECT_NE(a, ValidationResult::tooLong("Name", 31, 46, [] {}));
}

TEST(ValidationResultEquality, ComparesEveryOtherField) {
  const auto base = ValidationResult::missingOptional("Subtitle", "Be found", {"Open", "Type"});
  EXPECT_EQ(base, ValidationResult::missingOptional("Subtitle", "Be found", {"Open", "Type"}));

  auto differs = [&](auto change) {
    ValidationResult other = base;
    change(other);
    return other != base;
  };
  EXPECT_TRUE(differs([](ValidationResult& r) { r.isValid = false; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.severity = Severity::info; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.message += "."; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.suggestedFix = ""; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.businessReason.reset(); }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.businessImpact = BusinessImpact::suboptimal("search"); }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.actionGuidance->estimatedTime = "1-2 minutes"; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.actionGuidance->primaryAction.type = ActionType::autoFix({}); }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.actionGuidance.reset(); }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.displayBehavior->timing = Timing::delayed(3.5); }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.displayBehavior->priority = 301; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.displayBehavior->style = Style::warning; }));
  EXPECT_TRUE(differs([](ValidationResult& r) { r.displayBehavior.reset(); }));
}

// --- renderings -------------------------------------------------------------------------

TEST(ResultEnumerations, DescribeAsTheirCaseNames) {
  EXPECT_EQ(describe(Severity::none), "none");
  EXPECT_EQ(describe(Severity::info), "info");
  EXPECT_EQ(describe(Severity::warning), "warning");
  EXPECT_EQ(describe(Severity::error), "error");
  EXPECT_EQ(describe(Severity::critical), "critical");

  EXPECT_EQ(describe(Style::critical), "critical");
  EXPECT_EQ(describe(Style::error), "error");
  EXPECT_EQ(describe(Style::warning), "warning");
  EXPECT_EQ(describe(Style::suggestion), "suggestion");
  EXPECT_EQ(describe(Style::info), "info");

  using Animation = ValidationResult::UIPresentation::AnimationType;
  EXPECT_EQ(describe(Animation::none), "none");
  EXPECT_EQ(describe(Animation::subtle), "subtle");
  EXPECT_EQ(describe(Animation::pulse), "pulse");

  EXPECT_EQ(describe(ValidationColorScheme::critical), "critical");
  EXPECT_EQ(describe(ValidationColorScheme::error), "error");
  EXPECT_EQ(describe(ValidationColorScheme::warning), "warning");
  EXPECT_EQ(describe(ValidationColorScheme::suggestion), "suggestion");
  EXPECT_EQ(describe(ValidationColorScheme::opportunity), "opportunity");

  // Optional members render through the generic optional rendering.
  EXPECT_EQ(describe(ValidationResult::missingOptional("X", "b", {}).businessImpact),
            "suboptimal(area: \"discoverability\")");
  EXPECT_EQ(describe(ValidationResult::valid().businessImpact), "nil");
}

}  // namespace
}  // namespace corvane

#include "corvane/results/validation_result.hpp"

#include "corvane/results/validation_color_scheme.hpp"
#include "corvane/support/describe.hpp"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
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

std::vector<std::string> manualSteps(const Action& action) {
  const auto* manual = action.type.getIf<ActionType::Manual>();
  EXPECT_NE(manual, nullptr) << describe(action.type);
  return manual != nullptr ? manual->steps : std::vector<std::string>{};
}

// --- constructors and shared verdicts --------------------------------------------------

// The plain constructors, constants and factories: exactly the fields they are given or
// name, and none of the business ones they do not.
TEST(ValidationResultFactories, PlainFormsCarryOnlyWhatTheyName) {
  const auto blocker = BusinessImpact::blocker("Required field");
  const std::optional<std::string> none;
  const std::string reason = "Required for App Store submission";
  struct Case {
    const char* name;
    ValidationResult result;
    ValidationResult expected;  // every field spelled out
  };
  const Case cases[] = {
      {"four arguments", ValidationResult(false, Severity::info, "Heads up", "Do this"),
       ValidationResult(false, Severity::info, "Heads up", "Do this", none, std::nullopt, std::nullopt, std::nullopt)},
      {"three arguments", ValidationResult(true, Severity::none, ""),
       ValidationResult(true, Severity::none, "", none, none, std::nullopt, std::nullopt, std::nullopt)},
      {"valid()", ValidationResult::valid(),
       ValidationResult(true, Severity::none, "", none, none, std::nullopt, std::nullopt, std::nullopt)},
      {"invalid()", ValidationResult::invalid(),
       ValidationResult(false, Severity::error, "Invalid state", none, none, std::nullopt, std::nullopt, std::nullopt)},
      {"warning()", ValidationResult::warning(),
       ValidationResult(false, Severity::warning, "Warning state", none, none, std::nullopt, std::nullopt, std::nullopt)},
      {"info()", ValidationResult::info(),
       ValidationResult(true, Severity::info, "Informational state", none, none, std::nullopt, std::nullopt,
                        std::nullopt)},
      {"validRequired()", ValidationResult::validRequired(),
       ValidationResult(true, Severity::none, "Valid required field", none, reason, blocker, std::nullopt,
                        std::nullopt)},
      {"validRequired(field)", ValidationResult::validRequired("App Name"),
       ValidationResult(true, Severity::none, "App Name is valid", none, reason, blocker, std::nullopt, std::nullopt)},
      {"failure with a fix", ValidationResult::failure(Severity::warning, "Too short", "Add words"),
       ValidationResult(false, Severity::warning, "Too short", "Add words", none, std::nullopt, std::nullopt,
                        std::nullopt)},
      {"failure without a fix", ValidationResult::failure(Severity::error, "m"),
       ValidationResult(false, Severity::error, "m", none, none, std::nullopt, std::nullopt, std::nullopt)},
      {"info with a fix", ValidationResult::info("Consider a subtitle", "Add one"),
       ValidationResult(true, Severity::info, "Consider a subtitle", "Add one", none, std::nullopt, std::nullopt,
                        std::nullopt)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.result, c.expected);
  }
  for (Severity severity : kAllSeverities) {
    EXPECT_EQ(ValidationResult::invalid(severity, "m", "f"), ValidationResult::failure(severity, "m", "f"));
    EXPECT_EQ(ValidationResult::invalid(severity, "m"), ValidationResult::failure(severity, "m"));
  }
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

// Each enumeration's cases in declaration order, described by their names.
template <class Enum>
void expectNames(std::initializer_list<Enum> cases, std::initializer_list<const char*> names) {
  ASSERT_EQ(cases.size(), names.size());
  auto name = names.begin();
  for (Enum value : cases) EXPECT_EQ(describe(value), *name++);
}

TEST(ResultEnumerations, DescribeAsTheirCaseNames) {
  using Animation = ValidationResult::UIPresentation::AnimationType;
  using Scheme = ValidationColorScheme;
  expectNames({Severity::none, Severity::info, Severity::warning, Severity::error, Severity::critical},
              {"none", "info", "warning", "error", "critical"});
  expectNames({Style::critical, Style::error, Style::warning, Style::suggestion, Style::info},
              {"critical", "error", "warning", "suggestion", "info"});
  expectNames({Animation::none, Animation::subtle, Animation::pulse}, {"none", "subtle", "pulse"});
  expectNames({Scheme::critical, Scheme::error, Scheme::warning, Scheme::suggestion, Scheme::opportunity},
              {"critical", "error", "warning", "suggestion", "opportunity"});

  // Optional members render through the generic optional rendering.
  EXPECT_EQ(describe(ValidationResult::missingOptional("X", "b", {}).businessImpact),
            "suboptimal(area: \"discoverability\")");
  EXPECT_EQ(describe(ValidationResult::valid().businessImpact), "nil");
}

}  // namespace
}  // namespace corvane

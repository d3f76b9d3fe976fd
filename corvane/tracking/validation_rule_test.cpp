#include "corvane/tracking/validation_rule.hpp"

#include "corvane/support/describe.hpp"
#include "corvane/tracking/empty_value_rule.hpp"
#include "corvane/tracking/support_url_check.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

using Check = ValidationCheck;
using Guidance = ValidationGuidance;
using Requirement = ValidationRequirement;
using Severity = ValidationSeverity;
using Action = ActionGuidance::Action;

ValidationResult lean(bool isValid, Severity severity, std::string message,
                      std::optional<BusinessImpact> impact = std::nullopt) {
  return ValidationResult(isValid, severity, std::move(message), std::nullopt, std::nullopt, std::move(impact),
                          std::nullopt, std::nullopt);
}

std::string repeated(std::string_view unit, int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += unit;
  return text;
}

// A custom check that records the values it is given and answers with a fixed verdict.
struct RecordingCheck {
  std::vector<std::string>* seen;
  ValidationResult verdict;
  ValidationResult operator()(const std::string& value) const {
    seen->push_back(value);
    return verdict;
  }
};

const ValidationResult kRequiredBlocker =
    lean(false, Severity::critical, "App name is required", BusinessImpact::blocker("Required field"));

// --- requirement ----------------------------------------------------------------------

TEST(RuleLanguageRequirement, BlankRequiredFieldFailsLeanlyBeforeAnyCheck) {
  std::vector<std::string> seen;
  const auto rule = makeValidationRule("App name", Requirement::required,
                                       {Check::custom(RecordingCheck{&seen, ValidationResult::valid()})},
                                       Guidance::custom(ValidationResult::info()));
  for (const std::string blank : {"", "   ", " \t\n\r\n ", "\u00A0\u2028\u3000"}) {
    SCOPED_TRACE(quoted(blank));
    const auto verdict = rule(blank);
    EXPECT_EQ(verdict, kRequiredBlocker);
    // Leaner than ValidationResult::required: no reason, guidance or display advice.
    EXPECT_NE(verdict, ValidationResult::required("App name"));
    EXPECT_TRUE(verdict.blocksSubmission());
  }
  EXPECT_TRUE(seen.empty()) << "checks must not run on a blank required field";
}

TEST(RuleLanguageRequirement, FilledFieldIsValidWithABlockerOnlyWhenRequired) {
  EXPECT_EQ(makeValidationRule("Title", Requirement::required, {})("Hello"),
            lean(true, Severity::none, "Title is valid", BusinessImpact::blocker("Required field")));
  EXPECT_EQ(makeValidationRule("Title", Requirement::optional, {})("Hello"),
            lean(true, Severity::none, "Title is valid"));
}

TEST(RuleLanguageRequirement, UnnamedFieldIsCalledField) {
  const auto rule = makeValidationRule(std::nullopt, Requirement::required, {Check::tooLong(2)});
  EXPECT_EQ(rule("").message, "Field is required");
  EXPECT_EQ(rule("ab").message, "Field is valid");
  EXPECT_EQ(rule("abc").message, "Field is 1 characters too long");
}

// --- tooLong ----------------------------------------------------------------------------

TEST(RuleLanguageTooLong, UsesTheFullFactoryWithErrorUpToTwiceTheLimit) {
  const auto rule = makeValidationRule("App name", Requirement::required, {Check::tooLong(30)});
  EXPECT_EQ(rule(std::string(30, 'a')).message, "App name is valid");

  const auto justOver = rule(std::string(31, 'a'));
  EXPECT_EQ(justOver, ValidationResult::tooLong("App name", 30, 31, [] {}));
  EXPECT_EQ(justOver.severity, Severity::error);
  EXPECT_EQ(justOver.displayPriority(), 700);
  EXPECT_EQ(justOver.message, "App name is 1 characters too long");

  const auto twice = rule(std::string(60, 'a'));
  EXPECT_EQ(twice.severity, Severity::error);
  EXPECT_EQ(twice.message, "App name is 30 characters too long");

  const auto beyond = rule(std::string(61, 'a'));
  EXPECT_EQ(beyond.severity, Severity::critical);
  EXPECT_EQ(beyond.displayPriority(), 900);
}

TEST(RuleLanguageTooLong, OffersAnAutoFixThatRuns) {
  const auto verdict = makeValidationRule("Subtitle", Requirement::optional, {Check::tooLong(3)})("abcd");
  ASSERT_TRUE(verdict.actionGuidance.has_value());
  EXPECT_TRUE(verdict.actionGuidance->primaryAction.type.runAutoFix());
}

TEST(RuleLanguageTooLong, CountsCharactersAfterTrimming) {
  const auto rule = makeValidationRule("App name", Requirement::required, {Check::tooLong(30)});
  const std::string padding = " \t\n\r\n  ";
  EXPECT_TRUE(rule(padding + std::string(30, 'x') + padding).isValid);
  // Inner blanks count; only the ends are trimmed.
  EXPECT_EQ(rule(padding + std::string(15, 'x') + " " + std::string(15, 'x') + padding).message,
            "App name is 1 characters too long");
}

TEST(RuleLanguageTooLong, CountsUserPerceivedCharacters) {
  const auto rule = makeValidationRule("App name", Requirement::required, {Check::tooLong(30)});
  const std::vector<std::string> units = {
      "\U0001F600",                                                  // one emoji, four bytes
      "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466",  // a ZWJ family
      "e\u0301",                                                     // e with a combining acute
      "\U0001F1EB\U0001F1F7",                                        // a flag
  };
  for (const auto& unit : units) {
    SCOPED_TRACE(quoted(unit));
    EXPECT_EQ(rule(repeated(unit, 30)).message, "App name is valid");
    EXPECT_EQ(rule(repeated(unit, 31)).message, "App name is 1 characters too long");
  }
}

// --- tooShort ---------------------------------------------------------------------------

TEST(RuleLanguageTooShort, WarnsBelowTheMinimumOfTrimmedCharacters) {
  const auto rule = makeValidationRule("Keywords", Requirement::required, {Check::tooShort(10)});
  const auto expected = lean(false, Severity::warning, "Keywords should be at least 10 characters",
                             BusinessImpact::suboptimal("Length optimization"));
  EXPECT_EQ(rule("abcdefghi"), expected);
  EXPECT_EQ(rule("   abcdefghi \n"), expected);
  EXPECT_EQ(rule("abcdefghij").message, "Keywords is valid");
  EXPECT_EQ(rule(repeated("\U0001F600", 9)), expected);
}

TEST(RuleLanguageTooShort, FiresOnAnEmptyOptionalFieldBeforeTheGuidance) {
  const auto rule = makeValidationRule("Notes", Requirement::optional, {Check::tooShort(3)},
                                       Guidance::missingOptional("notes", "Notes help"));
  EXPECT_EQ(rule("").message, "Notes should be at least 3 characters");
}

// --- order and custom checks ------------------------------------------------------------

TEST(RuleLanguageChecks, RunInOrderUntilTheFirstVerdict) {
  const auto rule = makeValidationRule("Name", Requirement::required, {Check::tooShort(5), Check::tooLong(3)});
  EXPECT_EQ(rule("ab").message, "Name should be at least 5 characters");
  EXPECT_EQ(rule("abcdef").message, "Name is 3 characters too long");
}

TEST(RuleLanguageChecks, CustomCheckGetsTheUntrimmedValueAndHasTheLastWord) {
  std::vector<std::string> seen;
  const auto rule =
      makeValidationRule("Name", Requirement::optional,
                         {Check::custom(RecordingCheck{&seen, ValidationResult::valid()}), Check::tooLong(1)},
                         Guidance::custom(ValidationResult::invalid()));
  EXPECT_EQ(rule("  far too long \n"), ValidationResult::valid()) << "later checks and the guidance never run";
  EXPECT_EQ(rule(""), ValidationResult::valid()) << "guidance is not reached on an empty value either";
  EXPECT_EQ(seen, (std::vector<std::string>{"  far too long \n", ""}));
}

TEST(RuleLanguageChecks, CustomCheckVerdictIsReturnedAsIs) {
  const auto failure = ValidationResult::failure(Severity::error, "Nope", "Try again");
  std::vector<std::string> seen;
  const auto rule = makeValidationRule("Name", Requirement::required,
                                       {Check::tooLong(10), Check::custom(RecordingCheck{&seen, failure})});
  EXPECT_EQ(rule("short"), failure);
  EXPECT_EQ(rule("well beyond ten").message, "Name is 5 characters too long");
  EXPECT_EQ(seen, (std::vector<std::string>{"short"})) << "a check with a verdict stops the ones after it";
}

TEST(RuleLanguageChecks, EmptyCheckUsesTheFullRequiredFactory) {
  const auto rule = makeValidationRule("Support Phone", Requirement::optional, {Check::empty()});
  const auto verdict = rule(" \n ");
  EXPECT_EQ(verdict, ValidationResult::required("Support Phone",
                                                "App Store requires this information to process your submission"));
  ASSERT_TRUE(verdict.displayBehavior.has_value());
  EXPECT_EQ(verdict.displayBehavior->priority, 1000);
  ASSERT_TRUE(verdict.actionGuidance.has_value());
  EXPECT_EQ(verdict.actionGuidance->primaryAction.title, "Add support phone");
  EXPECT_EQ(rule("555"), lean(true, Severity::none, "Support Phone is valid"));
}

// --- guidance ---------------------------------------------------------------------------

TEST(RuleLanguageGuidance, MissingOptionalFiresOnlyForEmptyOptionalFields) {
  const auto guidance = Guidance::missingOptional("detailed description", "Descriptions help");
  const auto optional = makeValidationRule("Description", Requirement::optional, {Check::tooLong(50)}, guidance);
  const auto suggestion = lean(true, Severity::info, "Consider adding detailed description",
                               BusinessImpact::opportunity("Descriptions help"));
  EXPECT_EQ(optional(""), suggestion);
  EXPECT_EQ(optional(" \n "), suggestion);
  EXPECT_TRUE(optional("").isOpportunity());
  EXPECT_EQ(optional("Something"), lean(true, Severity::none, "Description is valid"));

  const auto required = makeValidationRule("App name", Requirement::required, {}, guidance);
  EXPECT_EQ(required(""), kRequiredBlocker);
  EXPECT_EQ(required("Foo").message, "App name is valid");
}

TEST(RuleLanguageGuidance, OpportunityFiresForAnEmptyValue) {
  const Action action{"Add video", "Record a preview", ActionGuidance::Action::ActionType::manual({"Record"})};
  const auto rule = makeValidationRule("Preview", Requirement::optional, {},
                                       Guidance::opportunity("Add an app preview", "Previews convert", action));
  EXPECT_EQ(rule("  "), ValidationResult::opportunity("Add an app preview", "Previews convert", action));
  EXPECT_EQ(rule("clip.mov"), lean(true, Severity::none, "Preview is valid"));
  EXPECT_EQ(makeValidationRule("Preview", Requirement::required, {},
                               Guidance::opportunity("Add an app preview", "Previews convert", action))("")
                .message,
            "Preview is required");
}

TEST(RuleLanguageGuidance, CustomGuidanceAlwaysAnswersAfterPassingChecks) {
  const auto advice = ValidationResult::info("Consider localising", "Add languages");
  const auto rule = makeValidationRule("Name", Requirement::required, {Check::tooLong(5)}, Guidance::custom(advice));
  EXPECT_EQ(rule("Foo"), advice);
  EXPECT_EQ(rule("Foobar").message, "Name is 1 characters too long");
  const auto optional =
      makeValidationRule("Name", Requirement::optional, {Check::tooLong(5)}, Guidance::custom(advice));
  EXPECT_EQ(optional(""), advice);
}

// --- support URL check ------------------------------------------------------------------

TEST(SupportURLCheck, AcceptsEitherSchemeAndTheEmptyValue) {
  for (const char* url : {"", "https://example.com/help", "http://example.com", "https://"}) {
    SCOPED_TRACE(url);
    EXPECT_EQ(supportURLCheck(url), ValidationResult::valid());
  }
}

TEST(SupportURLCheck, WarnsAboutAnythingElse) {
  const auto warning = lean(false, Severity::warning, "Support URL should start with https://",
                            BusinessImpact::suboptimal("URL format"));
  for (const char* url :
       {"example.com", "ftp://example.com", "HTTPS://example.com", " https://example.com", "http:/x"}) {
    SCOPED_TRACE(url);
    EXPECT_EQ(supportURLCheck(url), warning);
  }
}

// --- empty-value rule -------------------------------------------------------------------

enum class Category { none, games, tools };

TEST(EmptyValueRule, RequiredEmptyValueIsCritical) {
  const auto rule = emptyValueRule(Requirement::required, Category::none, "Primary Category");
  EXPECT_EQ(rule(Category::none),
            lean(false, Severity::critical, "Primary Category is required", BusinessImpact::blocker("Required field")));
  EXPECT_EQ(rule(Category::games),
            lean(true, Severity::none, "Primary Category is valid", BusinessImpact::blocker("Required field")));
}

TEST(EmptyValueRule, OptionalEmptyValueSuggestsASelection) {
  const auto rule = emptyValueRule(Requirement::optional, Category::none, "Secondary Category");
  EXPECT_EQ(rule(Category::none), lean(true, Severity::info, "Consider selecting secondary category",
                                       BusinessImpact::opportunity("Optional selection")));
  EXPECT_EQ(rule(Category::tools), lean(true, Severity::none, "Secondary Category is valid"));
}

TEST(EmptyValueRule, ComparesWithTheGivenEmptyValueOnly) {
  const auto rule = emptyValueRule<std::string>(Requirement::required, "-", std::nullopt);
  EXPECT_EQ(rule("-").message, "Field is required");
  EXPECT_EQ(rule("").message, "Field is valid") << "only the declared empty value counts as empty";
  EXPECT_EQ(emptyValueRule(Requirement::optional, 0, "ÉTAT")(0).message, "Consider selecting état");
}

}  // namespace
}  // namespace corvane

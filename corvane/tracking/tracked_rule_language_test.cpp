#include "corvane/tracking/tracked.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

using Check = ValidationCheck;
using Guidance = ValidationGuidance;
using Requirement = ValidationRequirement;
using Severity = ValidationSeverity;

ValidationResult lean(bool isValid, Severity severity, std::string message,
                      std::optional<BusinessImpact> impact = std::nullopt) {
  return ValidationResult(isValid, severity, std::move(message), std::nullopt, std::nullopt, std::move(impact),
                          std::nullopt, std::nullopt);
}

TEST(TrackedDeclaration, HoldsOneRuleAndJudgesItsInitialValue) {
  std::vector<std::string> seen;
  Tracked<std::string> property("abc", "Code", Requirement::required,
                                {Check::tooLong(5), Check::custom([&](const std::string& value) {
                                   seen.push_back(value);
                                   return ValidationResult::info("custom " + value);
                                 })});
  EXPECT_EQ(property.validationRules().size(), 1u) << "the whole declaration is one rule";
  EXPECT_EQ(property.validationResult(), ValidationResult::info("custom abc"));
  EXPECT_FALSE(property.propertyName().has_value());
  EXPECT_FALSE(property.hasChanged());

  property.setWrappedValue("abcdef");
  EXPECT_EQ(property.validationResult().message, "Code is 1 characters too long");
  property.setWrappedValue("  ");
  EXPECT_EQ(property.validationResult(),
            lean(false, Severity::critical, "Code is required", BusinessImpact::blocker("Required field")));
  EXPECT_EQ(seen, (std::vector<std::string>{"abc"}));
}

TEST(TrackedDeclaration, EmptyValueFormWorksForAnyEquatableType) {
  enum class Rating { unrated, everyone, teen };
  Tracked<Rating> rating(Requirement::required, Rating::unrated, Rating::unrated, "Age Rating");
  EXPECT_EQ(rating.validationResult().message, "Age Rating is required");
  EXPECT_FALSE(rating.validationResult().isValid);
  rating.setWrappedValue(Rating::teen);
  EXPECT_EQ(rating.validationResult(),
            lean(true, Severity::none, "Age Rating is valid", BusinessImpact::blocker("Required field")));

  Tracked<int> count(Requirement::optional, 0, 0, "Seat Count");
  EXPECT_EQ(count.validationResult(), lean(true, Severity::info, "Consider selecting seat count",
                                           BusinessImpact::opportunity("Optional selection")));
}

// --- presets ----------------------------------------------------------------------------

// Each preset judged at the edges of its rule: what is required, where the limit lies and
// what an empty optional value suggests. The tooLong severities are the rule language's own.
TEST(TrackedPresets, JudgeEachValueByTheirRule) {
  using Preset = Tracked<std::string> (*)(std::string);
  const auto blocker = BusinessImpact::blocker("Required field");
  const auto urlWarning =
      lean(false, Severity::warning, "Support URL should start with https://", BusinessImpact::suboptimal("URL format"));
  struct Case {
    const char* name;
    Preset preset;
    std::string value;
    ValidationResult expected;
  };
  const Case cases[] = {
      {"blank app name", &Tracked<std::string>::appNameDSL, "   ",
       lean(false, Severity::critical, "App name is required", blocker)},
      {"app name", &Tracked<std::string>::appNameDSL, "Hello", lean(true, Severity::none, "App name is valid", blocker)},
      {"app name at the limit", &Tracked<std::string>::appNameDSL, std::string(30, 'n'),
       lean(true, Severity::none, "App name is valid", blocker)},
      {"app name one over", &Tracked<std::string>::appNameDSL, std::string(31, 'n'),
       ValidationResult::tooLong("App name", 30, 31, [] {})},
      {"empty subtitle", &Tracked<std::string>::subtitleDSL, "",
       lean(false, Severity::critical, "Subtitle is required", blocker)},
      {"subtitle one over", &Tracked<std::string>::subtitleDSL, std::string(31, 's'),
       ValidationResult::tooLong("Subtitle", 30, 31, [] {})},
      {"subtitle", &Tracked<std::string>::subtitleDSL, "Fast notes",
       lean(true, Severity::none, "Subtitle is valid", blocker)},
      {"empty description", &Tracked<std::string>::descriptionDSL, "",
       lean(true, Severity::info, "Consider adding detailed description",
            BusinessImpact::opportunity("Detailed descriptions help users understand your app better"))},
      {"description at the limit", &Tracked<std::string>::descriptionDSL, std::string(4000, 'd'),
       lean(true, Severity::none, "Description is valid")},
      {"description one over", &Tracked<std::string>::descriptionDSL, std::string(4001, 'd'),
       ValidationResult::tooLong("Description", 4000, 4001, [] {})},
      {"keywords at the limit", &Tracked<std::string>::keywordsDSL, std::string(100, 'k'),
       lean(true, Severity::none, "Keywords is valid")},
      {"keywords one over", &Tracked<std::string>::keywordsDSL, std::string(101, 'k'),
       ValidationResult::tooLong("Keywords", 100, 101, [] {})},
      {"empty keywords", &Tracked<std::string>::keywordsDSL, "",
       lean(true, Severity::info, "Consider adding relevant keywords",
            BusinessImpact::opportunity("Keywords help users discover your app in search"))},
      // The custom check ends the rule, so an empty support URL gets no suggestion.
      {"empty support URL", &Tracked<std::string>::supportURLDSL, "", ValidationResult::valid()},
      {"support URL without a scheme", &Tracked<std::string>::supportURLDSL, "support.example.com", urlWarning},
      {"http support URL", &Tracked<std::string>::supportURLDSL, "http://example.com/help", ValidationResult::valid()},
      {"https support URL", &Tracked<std::string>::supportURLDSL, "https://example.com/help", ValidationResult::valid()},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.preset(c.value).validationResult(), c.expected) << "as built";
    // Set after construction, the value is judged the same way.
    Tracked<std::string> edited = c.preset(c.value == "x" ? "y" : "x");
    edited.setWrappedValue(c.value);
    EXPECT_EQ(edited.validationResult(), c.expected) << "as set";
  }
}

TEST(TrackedPresets, StartUnchangedAndUnnamed) {
  Tracked<std::string> appName = Tracked<std::string>::appNameDSL("Corvane");
  EXPECT_EQ(appName.wrappedValue(), "Corvane");
  EXPECT_EQ(appName.originalValue(), "Corvane");
  EXPECT_FALSE(appName.hasChanged());
  EXPECT_FALSE(appName.propertyName().has_value());
}

// Resource limits: a 10 MB value gets an ordinary verdict, counted in characters after trimming.
TEST(TrackedPresets, TenMegabyteValuesGetAVerdict) {
  constexpr std::size_t kBytes = 10 * 1024 * 1024;
  const std::string ascii(kBytes, 'x');
  const auto appName = Tracked<std::string>::appNameDSL(ascii).validationResult();
  EXPECT_FALSE(appName.isValid);
  EXPECT_EQ(appName.severity, Severity::critical);
  EXPECT_EQ(appName.message, "App name is " + std::to_string(kBytes - 30) + " characters too long");

  // Two bytes per character, with white space around it that trimming drops.
  std::string accented = "  ";
  while (accented.size() < kBytes) accented += "\u00e9";
  accented += "\n";
  const auto description = Tracked<std::string>::descriptionDSL(accented).validationResult();
  EXPECT_EQ(description.message, "Description is " + std::to_string((kBytes - 2) / 2 - 4000) + " characters too long");

  EXPECT_EQ(Tracked<std::string>::keywordsDSL(std::string(kBytes, ' ')).validationResult().message,
            "Consider adding relevant keywords");
  EXPECT_EQ(Tracked<std::string>::subtitleDSL(std::string(kBytes, '\t')).validationResult().message,
            "Subtitle is required");
  EXPECT_EQ(Tracked<std::string>::supportURLDSL("https://example.com/" + ascii).validationResult(),
            ValidationResult::valid());
  EXPECT_EQ(Tracked<std::string>::supportURLDSL(ascii).validationResult().message,
            "Support URL should start with https://");
}

}  // namespace
}  // namespace corvane

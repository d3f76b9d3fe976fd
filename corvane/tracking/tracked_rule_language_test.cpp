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

TEST(TrackedPresets, AppNameIsRequiredAndLimitedToThirtyCharacters) {
  Tracked<std::string> appName = Tracked<std::string>::appNameDSL("   ");
  EXPECT_EQ(appName.validationResult(),
            lean(false, Severity::critical, "App name is required", BusinessImpact::blocker("Required field")));

  appName.setWrappedValue("Hello");
  EXPECT_EQ(appName.validationResult(),
            lean(true, Severity::none, "App name is valid", BusinessImpact::blocker("Required field")));

  appName.setWrappedValue(std::string(30, 'n'));
  EXPECT_TRUE(appName.validationResult().isValid);
  appName.setWrappedValue(std::string(31, 'n'));
  EXPECT_EQ(appName.validationResult().severity, Severity::error);
  EXPECT_EQ(appName.validationResult().displayPriority(), 700);
  EXPECT_EQ(appName.validationResult().message, "App name is 1 characters too long");
  appName.setWrappedValue(std::string(60, 'n'));
  EXPECT_EQ(appName.validationResult().severity, Severity::error);
  appName.setWrappedValue(std::string(61, 'n'));
  EXPECT_EQ(appName.validationResult().severity, Severity::critical);
  EXPECT_EQ(appName.validationResult().displayPriority(), 900);
}

TEST(TrackedPresets, SubtitleIsRequiredAndLimitedToThirtyCharacters) {
  Tracked<std::string> subtitle = Tracked<std::string>::subtitleDSL("");
  EXPECT_EQ(subtitle.validationResult().message, "Subtitle is required");
  subtitle.setWrappedValue(std::string(31, 's'));
  EXPECT_EQ(subtitle.validationResult().message, "Subtitle is 1 characters too long");
  subtitle.setWrappedValue("Fast notes");
  EXPECT_EQ(subtitle.validationResult().message, "Subtitle is valid");
}

TEST(TrackedPresets, DescriptionIsOptionalWithASuggestionWhenEmpty) {
  Tracked<std::string> description = Tracked<std::string>::descriptionDSL("");
  EXPECT_EQ(description.validationResult(),
            lean(true, Severity::info, "Consider adding detailed description",
                 BusinessImpact::opportunity("Detailed descriptions help users understand your app better")));
  description.setWrappedValue(std::string(4000, 'd'));
  EXPECT_EQ(description.validationResult(), lean(true, Severity::none, "Description is valid"));
  description.setWrappedValue(std::string(4001, 'd'));
  EXPECT_EQ(description.validationResult().message, "Description is 1 characters too long");
}

TEST(TrackedPresets, KeywordsAreOptionalAndLimitedToAHundredCharacters) {
  Tracked<std::string> keywords = Tracked<std::string>::keywordsDSL(std::string(100, 'k'));
  EXPECT_EQ(keywords.validationResult(), lean(true, Severity::none, "Keywords is valid"));
  keywords.setWrappedValue(std::string(101, 'k'));
  EXPECT_EQ(keywords.validationResult().message, "Keywords is 1 characters too long");
  keywords.setWrappedValue("");
  EXPECT_EQ(keywords.validationResult(),
            lean(true, Severity::info, "Consider adding relevant keywords",
                 BusinessImpact::opportunity("Keywords help users discover your app in search")));
}

TEST(TrackedPresets, SupportURLWarnsWithoutAWebSchemeAndNeverSuggests) {
  Tracked<std::string> supportURL = Tracked<std::string>::supportURLDSL("");
  EXPECT_EQ(supportURL.validationResult(), ValidationResult::valid()) << "the custom check ends the rule";
  supportURL.setWrappedValue("support.example.com");
  EXPECT_EQ(supportURL.validationResult(), lean(false, Severity::warning, "Support URL should start with https://",
                                                BusinessImpact::suboptimal("URL format")));
  supportURL.setWrappedValue("http://example.com/help");
  EXPECT_EQ(supportURL.validationResult(), ValidationResult::valid());
  supportURL.setWrappedValue("https://example.com/help");
  EXPECT_EQ(supportURL.validationResult(), ValidationResult::valid());
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

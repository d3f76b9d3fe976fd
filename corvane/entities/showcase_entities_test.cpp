#include "corvane/entities/showcase_app_entity.hpp"
#include "corvane/entities/showcase_user_entity.hpp"

#include "corvane/cache/validation_cache.hpp"
#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/tracking/property_discovery.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

std::string repeat(std::string_view piece, int times) {
  std::string text;
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

TEST(ShowcaseAppEntityRules, AppNameLengthsInCharacters) {
  EXPECT_EQ(ShowcaseAppEntity::appNameRule(""),
            ValidationResult::failure(ValidationSeverity::error, "App name is required", "Enter a name for your app"));
  EXPECT_EQ(ShowcaseAppEntity::appNameRule("A"),
            ValidationResult::failure(ValidationSeverity::error, "App name must be at least 2 characters",
                                      "Enter a longer app name"));
  EXPECT_EQ(ShowcaseAppEntity::appNameRule("Ab"), ValidationResult::valid());
  EXPECT_EQ(ShowcaseAppEntity::appNameRule(repeat("a", 30)), ValidationResult::valid());
  EXPECT_EQ(ShowcaseAppEntity::appNameRule(repeat("a", 31)),
            ValidationResult::failure(ValidationSeverity::warning, "App name should be 30 characters or less",
                                      "Consider shortening the app name"));
  EXPECT_EQ(ShowcaseAppEntity::appNameRule(repeat("\U0001F600", 30)), ValidationResult::valid()) << "emoji count once";
  EXPECT_EQ(ShowcaseAppEntity::appNameRule("\U0001F1EF\U0001F1F5").message, "App name must be at least 2 characters")
      << "a flag is one character";
}

TEST(ShowcaseAppEntityRules, SubtitleAndKeywordsWarnWhenEmptyButStayValid) {
  const auto emptySubtitle = ShowcaseAppEntity::subtitleRule("");
  EXPECT_TRUE(emptySubtitle.isValid);
  EXPECT_EQ(emptySubtitle.severity, ValidationSeverity::warning);
  EXPECT_EQ(emptySubtitle.message, "Consider adding a subtitle");
  EXPECT_EQ(emptySubtitle.suggestedFix, "Subtitles help users discover your app");
  EXPECT_EQ(ShowcaseAppEntity::subtitleRule(repeat("s", 30)), ValidationResult::valid());
  EXPECT_EQ(ShowcaseAppEntity::subtitleRule(repeat("s", 31)).message, "Subtitle must be 30 characters or less");

  const auto noKeywords = ShowcaseAppEntity::keywordsRule({});
  EXPECT_TRUE(noKeywords.isValid);
  EXPECT_EQ(noKeywords.message, "Consider adding keywords");
  EXPECT_EQ(ShowcaseAppEntity::keywordsRule(std::vector<std::string>(100, "k")), ValidationResult::valid());
  const auto tooMany = ShowcaseAppEntity::keywordsRule(std::vector<std::string>(101, ""));
  EXPECT_FALSE(tooMany.isValid);
  EXPECT_EQ(tooMany.message, "Maximum 100 keywords allowed");
  EXPECT_EQ(tooMany.suggestedFix, "Remove some keywords");
}

TEST(ShowcaseAppEntityRules, VersionMustBeThreeDottedNumbers) {
  for (const char* good : {"1.0.0", "10.20.30", "0.0.0", "007.1.22"}) {
    EXPECT_EQ(ShowcaseAppEntity::versionRule(good), ValidationResult::valid()) << good;
  }
  for (const char* bad : {"", "1.0", "1.0.0-beta", "1.0.0.0", "1..0", ".1.0", "1.0.", "a.b.c", " 1.0.0", "1.0.0\n",
                          "\xD9\xA1.0.0"}) {
    const auto verdict = ShowcaseAppEntity::versionRule(bad);
    EXPECT_EQ(verdict, ValidationResult::failure(ValidationSeverity::error, "Version must be in format X.Y.Z",
                                                 "Use format like 1.0.0"))
        << '"' << bad << '"';
  }
}

TEST(ShowcaseUserEntityRules, NameAndEmail) {
  EXPECT_EQ(ShowcaseUserEntity::nameRule(""), ValidationResult::failure(ValidationSeverity::error, "Name required"));
  EXPECT_EQ(ShowcaseUserEntity::nameRule(" "), ValidationResult::valid());
  EXPECT_EQ(ShowcaseUserEntity::emailRule("a@"), ValidationResult::valid());
  EXPECT_EQ(ShowcaseUserEntity::emailRule(""), ValidationResult::failure(ValidationSeverity::error, "Invalid email"));
  EXPECT_EQ(ShowcaseUserEntity::emailRule("name.example.com").message, "Invalid email");
}

class ShowcaseEntityTest : public ::testing::Test {
 protected:
  testing::TestMainLoop loop;
  testing::CapturedLines lines;
  std::shared_ptr<ShowcaseAppEntity> app = std::make_shared<ShowcaseAppEntity>();
  std::shared_ptr<ShowcaseUserEntity> user = std::make_shared<ShowcaseUserEntity>();
};

TEST_F(ShowcaseEntityTest, AFreshAppEntityIsUnchangedButInvalidBecauseItHasNoName) {
  EXPECT_FALSE(app->hasUnsavedChanges());
  EXPECT_EQ(app->changeDescription(), "No changes");
  EXPECT_EQ(app->validationResult().message, "App name is required");
  EXPECT_EQ(app->version(), "1.0.0");
  EXPECT_EQ(app->versionProperty().validationResult(), ValidationResult::valid());
  EXPECT_FALSE(app->isValid());
}

TEST_F(ShowcaseEntityTest, TheVerdictCombinesNameSubtitleVersionAndKeywordsOnly) {
  app->setAppName("Weather");
  // Empty subtitle and keywords warn; combine picks the first warning.
  EXPECT_EQ(app->validationResult().message, "Consider adding a subtitle");
  app->setSubtitle("Forecasts");
  EXPECT_EQ(app->validationResult().message, "Consider adding keywords");
  app->setKeywords({"rain"});
  app->setAppDescription(repeat("d", 10000));
  EXPECT_TRUE(app->hasUnsavedChanges());
  lines.clear();
  EXPECT_EQ(app->validationResult(), ValidationResult::valid());
  EXPECT_EQ(lines.lines(), std::vector<std::string>{"Returning validRequired result: "})
      << "only plain valid verdicts are left, and combine says so";
  app->setVersion("2.0");
  EXPECT_EQ(app->validationResult().message, "Version must be in format X.Y.Z");
}

TEST_F(ShowcaseEntityTest, ChangeDescriptionNamesChangedFieldsInDeclarationOrder) {
  app->setKeywords({"photo"});
  app->setAppName("Snap");
  EXPECT_EQ(app->changeDescription(), "Changed: appName, keywords");
  app->setAppDescription("About");
  EXPECT_EQ(app->changeDescription(), "Changed: appName, appDescription, keywords");
  EXPECT_EQ(app->validationResult().message, "Consider adding a subtitle") << "the description has no rule";
  user->setEmail("x@y");
  EXPECT_EQ(user->changeDescription(), "Changed: email");
}

TEST_F(ShowcaseEntityTest, SaveWaitsMarksEverythingSavedAndDropsTheCachedVerdict) {
  ValidationCache::shared().getOrCompute("showcase-app-entity:validation", "", [] { return ValidationResult::valid(); });
  app->setAppName("Snap");
  app->setKeywords({"photo"});
  loop.run(app->saveChanges());
  EXPECT_FALSE(app->hasUnsavedChanges());
  EXPECT_EQ(app->appNameProperty().originalValue(), "Snap");
  EXPECT_EQ(app->keywordsProperty().originalValue(), std::vector<std::string>{"photo"});
  EXPECT_FALSE(ValidationCache::shared().entry("showcase-app-entity:validation"));
  EXPECT_EQ(lines.lines(), (std::vector<std::string>{"💾 Saving Showcase App Entity...",
                                                     "✅ Showcase App Entity saved successfully!"}));
}

TEST_F(ShowcaseEntityTest, SavesOfBothEntitiesInterleaveRatherThanBlock) {
  app->setAppName("Snap");
  app->setSubtitle("Photos");
  app->setKeywords({"camera"});
  user->setName("Kim");
  UnifiedChangeTracker tracker;
  tracker.register_(app);
  tracker.register_(user);
  user->setEmail("kim@example.com");
  ASSERT_TRUE(tracker.canSubmit());
  lines.clear();
  loop.run(tracker.submitAll());
  // submitAll first checks every verdict (both entities are plainly valid, and combine says
  // so); then the user profile's shorter wait ends first although its save started second.
  EXPECT_EQ(lines.lines(), (std::vector<std::string>{"Returning validRequired result: ",
                                                     "Returning validRequired result: ",
                                                     "💾 Saving Showcase App Entity...", "💾 Saving User Profile...",
                                                     "✅ User Profile saved successfully!",
                                                     "✅ Showcase App Entity saved successfully!"}));
}

TEST_F(ShowcaseEntityTest, DiscardRestoresEveryFieldAndPrintsItsLines) {
  app->setAppName("Snap");
  app->setSubtitle("Sub");
  app->setVersion("x");
  app->setKeywords({"k"});
  app->setAppDescription("d");
  app->discardChanges();
  EXPECT_FALSE(app->hasUnsavedChanges());
  EXPECT_EQ(app->changeDescription(), "No changes");
  EXPECT_EQ(app->version(), "1.0.0");
  EXPECT_EQ(app->versionProperty().validationResult(), ValidationResult::valid());
  EXPECT_EQ(lines.lines(), (std::vector<std::string>{"🔄 Discarding changes for Showcase App Entity...",
                                                     "✅ Showcase App Entity changes discarded!"}));
}

TEST_F(ShowcaseEntityTest, TheTrackerBackReferenceIsWeak) {
  std::weak_ptr<UnifiedChangeTracker> weak;
  {
    auto tracker = std::make_shared<UnifiedChangeTracker>();
    weak = tracker;
    app->setChangeTracker(tracker);
    user->setChangeTracker(tracker);
    tracker->register_(app);
    EXPECT_EQ(app->changeTracker(), tracker);
  }
  EXPECT_TRUE(weak.expired()) << "the entity must not keep its tracker alive";
  EXPECT_EQ(app->changeTracker(), nullptr);
  EXPECT_EQ(user->changeTracker(), nullptr);
}

TEST_F(ShowcaseEntityTest, DiscoveryNamesTheTrackedFieldsOnly) {
  auto named = PropertyDiscovery::findTrackedPropertiesWithNames(*app);
  std::vector<std::string> names;
  for (const auto& property : named) names.push_back(property.name);
  EXPECT_EQ(names, (std::vector<std::string>{"appName", "subtitle", "appDescription", "version", "keywords"}));
  EXPECT_EQ(named[0].property, &app->appNameProperty());
  UnifiedChangeTracker tracker;
  tracker.register_(app);
  tracker.register_(user);
  EXPECT_EQ(tracker.totalTrackedFieldCount(), 7);
  // Stored verdicts start out valid (the rules were attached after construction) and catch
  // up with the first edit of each field.
  EXPECT_TRUE(tracker.getValidationSummary().allValidationIssues.empty());
  EXPECT_FALSE(tracker.isValid()) << "the entities' own verdicts are current";
  app->setAppName("A");
  user->setEmail("no-at-sign");
  const auto summary = tracker.getValidationSummary();
  EXPECT_EQ(summary.totalRequiredFields, 0) << "showcase verdicts carry no business impact";
  ASSERT_EQ(summary.allValidationIssues.size(), 2u);
  EXPECT_EQ(summary.allValidationIssues[0].fieldName, "appName");
  EXPECT_EQ(summary.allValidationIssues[0].result.message, "App name must be at least 2 characters");
  EXPECT_EQ(summary.allValidationIssues[1].fieldName, "email");
}

// Resource limits: the rules answer for 10 MB values as for short ones.
TEST(ShowcaseAppEntityRules, TenMegabyteValuesGetAVerdict) {
  const std::string huge(10 * 1024 * 1024, 'a');
  EXPECT_EQ(ShowcaseAppEntity::appNameRule(huge).message, "App name should be 30 characters or less");
  EXPECT_EQ(ShowcaseAppEntity::subtitleRule(huge).message, "Subtitle must be 30 characters or less");
  EXPECT_FALSE(ShowcaseAppEntity::versionRule(huge + ".1.2").isValid);
  EXPECT_TRUE(ShowcaseAppEntity::versionRule(std::string(10 * 1024 * 1024, '1') + ".0.0").isValid);
  EXPECT_EQ(ShowcaseAppEntity::keywordsRule({huge}), ValidationResult::valid());
  EXPECT_TRUE(ShowcaseUserEntity::nameRule(huge).isValid);
  EXPECT_FALSE(ShowcaseUserEntity::emailRule(huge).isValid);
  EXPECT_TRUE(ShowcaseUserEntity::emailRule(huge + "@example.com").isValid);
}

}  // namespace
}  // namespace corvane

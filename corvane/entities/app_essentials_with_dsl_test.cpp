#include "corvane/entities/app_essentials_with_dsl.hpp"

#include "corvane/observation/observation_tracking.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/tracking/property_discovery.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace corvane {
namespace {

using Severity = ValidationSeverity;

// One field of the entity, reached through its accessors.
struct Field {
  const char* name;
  std::function<void(AppEssentialsWithDSL&, std::string)> set;
  std::function<Tracked<std::string>&(AppEssentialsWithDSL&)> property;
};

const std::vector<Field>& allFields() {
  static const std::vector<Field> fields{
      {"appName", &AppEssentialsWithDSL::setAppName,
       [](AppEssentialsWithDSL& e) -> Tracked<std::string>& { return e.appNameProperty(); }},
      {"subtitle", &AppEssentialsWithDSL::setSubtitle,
       [](AppEssentialsWithDSL& e) -> Tracked<std::string>& { return e.subtitleProperty(); }},
      {"description", &AppEssentialsWithDSL::setDescription,
       [](AppEssentialsWithDSL& e) -> Tracked<std::string>& { return e.descriptionProperty(); }},
      {"supportEmail", &AppEssentialsWithDSL::setSupportEmail,
       [](AppEssentialsWithDSL& e) -> Tracked<std::string>& { return e.supportEmailProperty(); }},
      {"keywords", &AppEssentialsWithDSL::setKeywords,
       [](AppEssentialsWithDSL& e) -> Tracked<std::string>& { return e.keywordsProperty(); }},
  };
  return fields;
}

// Fills every field with a value that passes its checks.
void fillValidly(AppEssentialsWithDSL& entity) {
  entity.setAppName("Corvane");
  entity.setSubtitle("Metadata, checked");
  entity.setDescription("Edits and validates store metadata.");
  entity.setSupportEmail("help@example.com");
  entity.setKeywords("metadata,store,review");
}

bool looksLikeUuid(const std::string& text) {
  if (text.size() != 36) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    const char c = text[i];
    if (dash ? c != '-' : !((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'))) return false;
  }
  return true;
}

TEST(AppEssentialsWithDSL, StartsEmptyAndUnchanged) {
  AppEssentialsWithDSL entity;
  EXPECT_EQ(entity.entityName(), "App Essentials (Simple DSL)");
  EXPECT_FALSE(entity.hasUnsavedChanges());
  EXPECT_EQ(entity.changeDescription(), "app essentials");
  for (const auto& field : allFields()) {
    SCOPED_TRACE(field.name);
    EXPECT_EQ(field.property(entity).wrappedValue(), "");
    EXPECT_EQ(field.property(entity).originalValue(), "");
  }
  // Unnamed declarations speak of "Field"; the first blank required field wins.
  EXPECT_EQ(entity.validationResult().message, "Field is required");
  EXPECT_FALSE(entity.isValid());
}

TEST(AppEssentialsWithDSL, EachInstanceHasItsOwnUuid) {
  AppEssentialsWithDSL first;
  AppEssentialsWithDSL second;
  EXPECT_TRUE(looksLikeUuid(first.entityId())) << first.entityId();
  EXPECT_TRUE(looksLikeUuid(second.entityId())) << second.entityId();
  EXPECT_NE(first.entityId(), second.entityId());
  EXPECT_EQ(first.entityId(), first.entityId()) << "the id is fixed for the instance's life";
}

TEST(AppEssentialsWithDSL, AppNameIsLimitedToThirtyCharacters) {
  AppEssentialsWithDSL entity;
  entity.setAppName(std::string(30, 'a'));
  EXPECT_EQ(entity.appName(), std::string(30, 'a'));
  EXPECT_EQ(entity.appNameProperty().validationResult(),
            ValidationResult(true, Severity::none, "Field is valid", std::nullopt, std::nullopt,
                             BusinessImpact::blocker("Required field"), std::nullopt, std::nullopt));
  entity.setAppName(std::string(31, 'a'));
  EXPECT_EQ(entity.appNameProperty().validationResult(), ValidationResult::tooLong("Field", 30, 31, [] {}));
}

TEST(AppEssentialsWithDSL, KeywordsNeedTenToAHundredCharacters) {
  AppEssentialsWithDSL entity;
  const auto verdictFor = [&](std::size_t length) {
    entity.setKeywords(std::string(length, 'k'));
    return entity.keywordsProperty().validationResult();
  };
  EXPECT_EQ(
      verdictFor(9),
      ValidationResult(false, Severity::warning, "Field should be at least 10 characters", std::nullopt, std::nullopt,
                       BusinessImpact::suboptimal("Length optimization"), std::nullopt, std::nullopt));
  EXPECT_EQ(verdictFor(10).message, "Field is valid");
  EXPECT_EQ(verdictFor(100).message, "Field is valid");
  const auto tooLong = verdictFor(101);
  EXPECT_EQ(tooLong.message, "Field is 1 characters too long");
  EXPECT_EQ(tooLong.severity, Severity::error);
}

TEST(AppEssentialsWithDSL, SupportEmailNeedsAnAtSignWhenGiven) {
  AppEssentialsWithDSL entity;
  entity.setSupportEmail("helpdesk");
  const auto warning = entity.supportEmailProperty().validationResult();
  EXPECT_EQ(warning,
            ValidationResult(false, Severity::warning, "Support email should contain @", std::nullopt, std::nullopt,
                             BusinessImpact::suboptimal("Email format"), std::nullopt, std::nullopt));
  ASSERT_TRUE(warning.businessImpact.has_value());
  ASSERT_NE(warning.businessImpact->getIf<BusinessImpact::Suboptimal>(), nullptr);
  EXPECT_EQ(warning.businessImpact->getIf<BusinessImpact::Suboptimal>()->area, "Email format");

  for (const char* email : {"help@example.com", "@", "helpdesk@", "a@b@c", ""}) {
    SCOPED_TRACE(email);
    entity.setSupportEmail(email);
    EXPECT_EQ(entity.supportEmailProperty().validationResult(), ValidationResult::valid());
  }
}

TEST(AppEssentialsWithDSL, EmptyDescriptionIsASuggestion) {
  AppEssentialsWithDSL entity;
  EXPECT_EQ(entity.descriptionProperty().validationResult(),
            ValidationResult(true, Severity::info, "Consider adding detailed description", std::nullopt, std::nullopt,
                             BusinessImpact::opportunity("Detailed descriptions help users understand your app better"),
                             std::nullopt, std::nullopt));
  entity.setDescription(std::string(4001, 'd'));
  EXPECT_EQ(entity.descriptionProperty().validationResult().message, "Field is 1 characters too long");
}

TEST(AppEssentialsWithDSL, VerdictCombinesTheFieldsInOrder) {
  AppEssentialsWithDSL entity;
  fillValidly(entity);
  entity.setDescription("");
  EXPECT_EQ(entity.validationResult().message, "Consider adding detailed description");
  EXPECT_TRUE(entity.isValid());

  entity.setSupportEmail("helpdesk");
  EXPECT_EQ(entity.validationResult().message, "Support email should contain @");
  EXPECT_FALSE(entity.isValid());

  entity.setAppName(std::string(31, 'a'));  // error 700 outranks the warning's 500
  EXPECT_EQ(entity.validationResult().message, "Field is 1 characters too long");

  entity.setKeywords("");  // critical 1000
  EXPECT_EQ(entity.validationResult().message, "Field is required");
  EXPECT_EQ(entity.validationResult().severity, Severity::critical);
}

TEST(AppEssentialsWithDSL, ChangeDescriptionListsChangedFieldsInOrder) {
  AppEssentialsWithDSL entity;
  entity.setKeywords("one,two,three");
  entity.setSubtitle("Sub");
  EXPECT_TRUE(entity.hasUnsavedChanges());
  EXPECT_EQ(entity.changeDescription(), "subtitle, keywords");

  fillValidly(entity);
  EXPECT_EQ(entity.changeDescription(), "app name, subtitle, description, support email, keywords");
}

TEST(AppEssentialsWithDSL, ChangingBackToTheSavedTextLeavesItUnchanged) {
  AppEssentialsWithDSL entity;
  entity.setSupportEmail("a@b.c");
  entity.setSupportEmail("");
  EXPECT_FALSE(entity.supportEmailProperty().hasChanged());
  EXPECT_FALSE(entity.hasUnsavedChanges());
  EXPECT_EQ(entity.changeDescription(), "app essentials");
}

TEST(AppEssentialsWithDSL, SaveMakesCurrentValuesTheSavedOnes) {
  testing::TestMainLoop loop;
  AppEssentialsWithDSL entity;
  fillValidly(entity);
  entity.setAppName(std::string(31, 'a'));
  const auto verdictBefore = entity.validationResult();

  loop.run(entity.saveChanges());
  EXPECT_FALSE(entity.hasUnsavedChanges());
  EXPECT_EQ(entity.changeDescription(), "app essentials");
  EXPECT_EQ(entity.appName(), std::string(31, 'a'));
  EXPECT_EQ(entity.appNameProperty().originalValue(), std::string(31, 'a'));
  EXPECT_EQ(entity.keywordsProperty().originalValue(), "metadata,store,review");
  EXPECT_EQ(entity.validationResult(), verdictBefore) << "saving does not revalidate";

  entity.setSubtitle("Changed after save");
  entity.discardChanges();
  EXPECT_EQ(entity.subtitle(), "Metadata, checked") << "discard returns to the last save";
}

TEST(AppEssentialsWithDSL, DiscardRestoresEveryFieldAndItsVerdict) {
  AppEssentialsWithDSL entity;
  const auto freshVerdict = entity.validationResult();
  fillValidly(entity);
  ASSERT_TRUE(entity.isValid());
  entity.discardChanges();
  EXPECT_FALSE(entity.hasUnsavedChanges());
  for (const auto& field : allFields()) {
    SCOPED_TRACE(field.name);
    EXPECT_EQ(field.property(entity).wrappedValue(), "");
  }
  EXPECT_EQ(entity.validationResult(), freshVerdict);
}

TEST(AppEssentialsWithDSL, ReadingAFieldObservesItsProperty) {
  AppEssentialsWithDSL entity;
  int notified = 0;
  withObservationTracking([&] { (void)entity.subtitle(); }, [&] { ++notified; });
  entity.setAppName("Other field");
  EXPECT_EQ(notified, 0);
  entity.setSubtitle("Read field");
  EXPECT_EQ(notified, 1);
}

TEST(AppEssentialsWithDSL, DiscoveryNamesTheFieldsAfterTheirBackingStores) {
  AppEssentialsWithDSL entity;
  const auto named = PropertyDiscovery::findTrackedPropertiesWithNames(entity);
  ASSERT_EQ(named.size(), allFields().size());
  for (std::size_t i = 0; i < named.size(); ++i) {
    SCOPED_TRACE(allFields()[i].name);
    EXPECT_EQ(named[i].name, allFields()[i].name);
    EXPECT_EQ(named[i].property, &allFields()[i].property(entity));
  }
  entity.setAppName("Corvane");
  EXPECT_EQ(entity.appNameProperty().changeDescription(), "appName: '' \u2192 'Corvane'");
}

// --- hostile input ----------------------------------------------------------------------

TEST(AppEssentialsWithDSLInput, InvalidUtf8GetsAVerdict) {
  AppEssentialsWithDSL entity;
  // A lone continuation byte, a truncated sequence, an overlong form and a surrogate.
  const std::string invalid = "\x80 \xE2\x82 \xC0\xAF \xED\xA0\x80";
  for (const auto& field : allFields()) field.set(entity, invalid);
  EXPECT_TRUE(entity.appNameProperty().validationResult().isValid);
  EXPECT_EQ(entity.keywordsProperty().validationResult().message, "Field is valid") << "each bad byte is a character";
  EXPECT_EQ(entity.supportEmailProperty().validationResult().message, "Support email should contain @");

  const std::string onlyBad(31, '\xFF');
  for (const auto& field : allFields()) field.set(entity, onlyBad);
  EXPECT_EQ(entity.appNameProperty().validationResult().message, "Field is 1 characters too long");
  EXPECT_EQ(entity.validationResult().message, "Field is 1 characters too long");
}

TEST(AppEssentialsWithDSLInput, TenMegabyteValuesGetAVerdict) {
  AppEssentialsWithDSL entity;
  constexpr std::size_t kLength = 10 * 1024 * 1024;
  for (const std::string& value : {std::string(kLength, 'x'), std::string(kLength, '\xFF')}) {
    for (const auto& field : allFields()) field.set(entity, value);
    const auto appName = entity.appNameProperty().validationResult();
    EXPECT_EQ(appName.severity, Severity::critical);
    EXPECT_EQ(appName.message, "Field is " + std::to_string(kLength - 30) + " characters too long");
    EXPECT_EQ(entity.descriptionProperty().validationResult().message,
              "Field is " + std::to_string(kLength - 4000) + " characters too long");
    EXPECT_EQ(entity.supportEmailProperty().validationResult().message, "Support email should contain @");
    EXPECT_FALSE(entity.isValid());
  }
  entity.discardChanges();
  EXPECT_FALSE(entity.hasUnsavedChanges());
}

TEST(AppEssentialsWithDSLNames, NamedFieldsSpeakOfTheirNames) {
  AppEssentialsWithDSL named({"App name", "Subtitle", "Description", "Support email", "Keywords"});
  named.setAppName(std::string(31, 'n'));
  EXPECT_EQ(named.appNameProperty().validationResult().message, "App name is 1 characters too long");
  EXPECT_EQ(named.subtitleProperty().validationResult().message, "Subtitle is required");
  named.setKeywords("short");
  EXPECT_EQ(named.keywordsProperty().validationResult().message, "Keywords should be at least 10 characters");
  EXPECT_EQ(AppEssentialsWithDSL().subtitleProperty().validationResult().message, "Field is required");
}

}  // namespace
}  // namespace corvane

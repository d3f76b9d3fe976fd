#include "corvane/tracking/property_discovery.hpp"

#include "corvane/tracking/tracked.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

// An entity with tracked fields of two types, an untracked field and an unlabelled one.
class MixedEntity final : public TrackableEntity {
 public:
  std::string entityId() const override { return "mixed"; }
  std::string entityName() const override { return "Mixed"; }
  bool hasUnsavedChanges() const override { return false; }
  std::string changeDescription() const override { return ""; }
  ValidationResult validationResult() const override { return ValidationResult::valid(); }

  std::vector<StoredProperty> storedProperties() override {
    return {{"_title", &title},         {"_notes", nullptr}, {"__secret", &secret},
            {std::nullopt, &anonymous}, {"count", &count},   {"_", &bare}};
  }

  Tracked<std::string> title{"Old"};
  Tracked<std::string> secret{""};
  Tracked<std::string> anonymous{""};
  Tracked<int> count{1};
  Tracked<int> bare{0};
};

class NoFieldsEntity final : public TrackableEntity {
 public:
  std::string entityId() const override { return "none"; }
  std::string entityName() const override { return "None"; }
  bool hasUnsavedChanges() const override { return false; }
  std::string changeDescription() const override { return ""; }
  ValidationResult validationResult() const override { return ValidationResult::valid(); }
};

class PropertyDiscoveryTest : public ::testing::Test {
 protected:
  void SetUp() override { entity.anonymous.setPropertyName("Kept"); }

  std::vector<ChangeDetectable*> trackedInOrder() {
    return {&entity.title, &entity.secret, &entity.anonymous, &entity.count, &entity.bare};
  }

  MixedEntity entity;
};

TEST_F(PropertyDiscoveryTest, FindsTrackedFieldsInOrderAndNamesThemFromTheirLabels) {
  EXPECT_EQ(PropertyDiscovery::findTrackedProperties(entity), trackedInOrder());
  EXPECT_EQ(entity.title.propertyName(), "title");
  EXPECT_EQ(entity.secret.propertyName(), "_secret") << "only one underscore is removed";
  EXPECT_EQ(entity.anonymous.propertyName(), "Kept") << "an unlabelled field keeps its name";
  EXPECT_EQ(entity.count.propertyName(), "count");
  EXPECT_EQ(entity.bare.propertyName(), "");
}

TEST_F(PropertyDiscoveryTest, NamedFormCallsUnlabelledFieldsUnknown) {
  const auto named = PropertyDiscovery::findTrackedPropertiesWithNames(entity);
  std::vector<std::string> names;
  std::vector<ChangeDetectable*> properties;
  for (const auto& [name, property] : named) {
    names.push_back(name);
    properties.push_back(property);
  }
  EXPECT_EQ(names, (std::vector<std::string>{"title", "_secret", "unknown", "count", ""}));
  EXPECT_EQ(properties, trackedInOrder());
  EXPECT_EQ(entity.anonymous.propertyName(), "unknown") << "the named form writes every name";
  EXPECT_EQ(entity.secret.propertyName(), "_secret");
}

TEST_F(PropertyDiscoveryTest, DiscoveredNamesShowInChangeDescriptions) {
  EXPECT_EQ(entity.title.changeDescription(), "");
  PropertyDiscovery::findTrackedProperties(entity);
  entity.title.setWrappedValue("New");
  entity.count.setWrappedValue(2);
  EXPECT_EQ(entity.title.changeDescription(), "title: 'Old' \u2192 'New'");
  EXPECT_EQ(entity.count.changeDescription(), "count: '1' \u2192 '2'");
}

TEST_F(PropertyDiscoveryTest, RunningTwiceFindsTheSameObjectsUnderTheSameNames) {
  const auto first = PropertyDiscovery::findTrackedPropertiesWithNames(entity);
  const auto second = PropertyDiscovery::findTrackedPropertiesWithNames(entity);
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(first[i].name, second[i].name);
    EXPECT_EQ(first[i].property, second[i].property);
  }
  // Driving a discovered property drives the entity's own field.
  entity.title.setWrappedValue("Edited");
  EXPECT_TRUE(first[0].property->hasChanged());
  first[0].property->markSaved();
  EXPECT_EQ(entity.title.originalValue(), "Edited");
}

TEST(PropertyDiscoveryEmpty, EntityWithoutTrackedFieldsYieldsEmptyLists) {
  NoFieldsEntity entity;
  EXPECT_TRUE(PropertyDiscovery::findTrackedProperties(entity).empty());
  EXPECT_TRUE(PropertyDiscovery::findTrackedPropertiesWithNames(entity).empty());
}

}  // namespace
}  // namespace corvane

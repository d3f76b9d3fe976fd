#include "corvane/tracking/tracked.hpp"

#include "corvane/observation/observation_tracking.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace corvane {
namespace {

// A rule that records each value it sees and judges by length.
struct RecordingRule {
  std::vector<std::string>* seen;
  std::string label;
  ValidationResult operator()(const std::string& value) const {
    seen->push_back(label + ":" + value);
    return value.size() > 3 ? ValidationResult::failure(ValidationSeverity::error, label + " too long")
                            : ValidationResult::info(label + " ok");
  }
};

class TrackedTest : public ::testing::Test {
 protected:
  std::vector<std::string> seen;
  Tracked<std::string> property{"", {RecordingRule{&seen, "r1"}, RecordingRule{&seen, "r2"}}};
};

TEST_F(TrackedTest, ConstructionRunsEveryRuleAndKeepsTheLastVerdict) {
  EXPECT_EQ(seen, (std::vector<std::string>{"r1:", "r2:"}));
  EXPECT_EQ(property.validationResult(), ValidationResult::info("r2 ok"));
  EXPECT_FALSE(property.hasChanged());
  EXPECT_EQ(property.changeDescription(), "");
  EXPECT_FALSE(property.propertyName());
}

TEST_F(TrackedTest, SettingAnEqualValueAnnouncesButDoesNotRevalidate) {
  property.setWrappedValue("abc");
  seen.clear();
  int storageWrites = 0;
  auto connection = property.observe("storage", [&] { ++storageWrites; });
  int verdictWrites = 0;
  auto verdictConnection = property.observe("cachedValidationResult", [&] { ++verdictWrites; });
  property.setWrappedValue("abc");
  EXPECT_EQ(storageWrites, 1);
  EXPECT_EQ(verdictWrites, 0);
  EXPECT_TRUE(seen.empty()) << "rules must not run for an equal value";
}

TEST_F(TrackedTest, ChangingAndChangingBackRevalidatesEachTime) {
  property.setWrappedValue("toolong");
  EXPECT_TRUE(property.hasChanged());
  EXPECT_EQ(property.validationResult().message, "r2 too long");
  property.setWrappedValue("");
  EXPECT_FALSE(property.hasChanged());
  EXPECT_EQ(property.validationResult(), ValidationResult::info("r2 ok"));
  EXPECT_EQ(seen, (std::vector<std::string>{"r1:", "r2:", "r1:toolong", "r2:toolong", "r1:", "r2:"}));
}

TEST_F(TrackedTest, MarkSavedKeepsTheVerdictAndMovesTheBaseline) {
  property.setWrappedValue("toolong");
  seen.clear();
  property.markSaved();
  EXPECT_FALSE(property.hasChanged());
  EXPECT_EQ(property.originalValue(), "toolong");
  EXPECT_EQ(property.validationResult().message, "r2 too long");
  EXPECT_TRUE(seen.empty());
  property.setWrappedValue("x");
  property.discardChanges();
  EXPECT_EQ(property.wrappedValue(), "toolong") << "discard returns to the saved value, not the first one";
}

TEST_F(TrackedTest, DiscardRerunsTheRulesEvenWithoutChanges) {
  seen.clear();
  int storageWrites = 0;
  auto connection = property.observe("storage", [&] { ++storageWrites; });
  property.discardChanges();
  EXPECT_EQ(seen, (std::vector<std::string>{"r1:", "r2:"}));
  EXPECT_EQ(storageWrites, 1);
}

TEST_F(TrackedTest, AddValidationTakesEffectOnlyAtTheNextRevalidation) {
  property.addValidation([](const std::string&) { return ValidationResult::failure(ValidationSeverity::critical, "r3"); });
  EXPECT_EQ(property.validationResult(), ValidationResult::info("r2 ok")) << "the stored verdict is kept";
  EXPECT_EQ(property.validate().message, "r3") << "validate() already ends with the new rule";
  EXPECT_EQ(property.validationRules().size(), 3u);
  property.setWrappedValue("a");
  EXPECT_EQ(property.validationResult().message, "r3");
}

TEST_F(TrackedTest, InPlaceMutationBehavesAsASet) {
  property.mutateWrappedValue([](std::string& value) { value += "abcd"; });
  EXPECT_EQ(property.wrappedValue(), "abcd");
  EXPECT_EQ(property.validationResult().message, "r2 too long");
  seen.clear();
  property.mutateWrappedValue([](std::string&) {});
  EXPECT_TRUE(seen.empty());
}

TEST_F(TrackedTest, ChangeDescriptionNamesThePropertyWithAnArrow) {
  property.setWrappedValue("Foo");
  property.markSaved();
  property.setWrappedValue("Bar");
  EXPECT_EQ(property.changeDescription(), "Changed from 'Foo' to 'Bar'");
  property.setPropertyName("App Name");
  EXPECT_EQ(property.changeDescription(), "App Name: 'Foo' \u2192 'Bar'");
}

TEST(TrackedValues, WorkForAnyEquatableType) {
  Tracked<int> count(1);
  count.setPropertyName("Count");
  count.setWrappedValue(2);
  EXPECT_EQ(count.changeDescription(), "Count: '1' \u2192 '2'");
  EXPECT_EQ(count.validationResult(), ValidationResult::valid());

  Tracked<std::vector<std::string>> keywords({});
  keywords.mutateWrappedValue([](auto& list) { list.push_back("photo"); });
  EXPECT_EQ(keywords.changeDescription(), "Changed from '[]' to '[\"photo\"]'");
}

TEST(TrackedObservation, TrackingFiresForTheFieldsThatWereRead) {
  Tracked<std::string> property("a");
  int changes = 0;
  withObservationTracking([&] { (void)property.validationResult(); }, [&] { ++changes; });
  property.setWrappedValue("a");  // equal: the verdict is not rewritten
  EXPECT_EQ(changes, 0);
  property.setWrappedValue("b");
  EXPECT_EQ(changes, 1);

  withObservationTracking([&] { (void)property.hasChanged(); }, [&] { ++changes; });
  property.markSaved();  // hasChanged read the original value
  EXPECT_EQ(changes, 2);
}

TEST(TrackedCache, ValidateCachedReusesTheVerdictForTheSameValue) {
  testing::TestMainLoop loop;
  int runs = 0;
  Tracked<std::string> property("name", {[&](const std::string& value) {
                                  ++runs;
                                  return ValidationResult::info(value);
                                }});
  const int afterConstruction = runs;
  auto before = ValidationCache::shared().getStatistics();
  EXPECT_EQ(property.validateCached().message, "name");
  EXPECT_EQ(property.validateCached().message, "name");
  auto after = ValidationCache::shared().getStatistics();
  EXPECT_EQ(runs, afterConstruction + 1);
  EXPECT_EQ(after.cacheHits - before.cacheHits, 1);
  EXPECT_TRUE(ValidationCache::shared().entry(property.identityKey() + ":name"));

  Tracked<std::string> other("name", {[](const std::string&) { return ValidationResult::invalid(); }});
  EXPECT_EQ(other.validateCached(), ValidationResult::invalid()) << "keys are per property";
  ValidationCache::shared().invalidatePrefix(property.identityKey());
  ValidationCache::shared().invalidatePrefix(other.identityKey());
}

// A property built where a destroyed one lived must not inherit that one's cached verdict.
TEST(TrackedCache, ANewPropertyInTheStorageOfADestroyedOneGetsItsOwnVerdict) {
  testing::TestMainLoop loop;
  std::optional<Tracked<std::string>> slot;
  slot.emplace("same",
               std::vector<Tracked<std::string>::Rule>{[](const std::string&) { return ValidationResult::invalid(); }});
  const std::string firstKey = slot->identityKey();
  EXPECT_EQ(slot->validateCached(), ValidationResult::invalid());
  slot.reset();
  slot.emplace("same",
               std::vector<Tracked<std::string>::Rule>{[](const std::string&) { return ValidationResult::valid(); }});
  EXPECT_NE(slot->identityKey(), firstKey) << "identities are never reused";
  EXPECT_EQ(slot->validateCached(), ValidationResult::valid());
  ValidationCache::shared().invalidatePrefix(firstKey + ":");
  ValidationCache::shared().invalidatePrefix(slot->identityKey() + ":");
}

// A rule may consult another property's cached verdict; its own would recurse forever.
TEST(TrackedCache, ARuleMayAskAnotherPropertyForItsCachedVerdictButNotItsOwn) {
  testing::TestMainLoop loop;
  Tracked<std::string> name("Corvane",
                            {[](const std::string& value) { return ValidationResult::info("name " + value); }});
  Tracked<std::string> subtitle("Edits", {[&](const std::string& value) {
                                  return ValidationResult::info(name.validateCached().message + ", subtitle " + value);
                                }});
  EXPECT_EQ(subtitle.validateCached().message, "name Corvane, subtitle Edits");

  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        Tracked<std::string> selfish("x");
        selfish.addValidation([&](const std::string&) { return selfish.validateCached(); });
        (void)selfish.validateCached();
      },
      "precondition failed: .*asked the same cache for its own key");
  ValidationCache::shared().invalidatePrefix(name.identityKey() + ":");
  ValidationCache::shared().invalidatePrefix(subtitle.identityKey() + ":");
}

}  // namespace
}  // namespace corvane

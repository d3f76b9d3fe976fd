#include "corvane/tracking/trackable_entity.hpp"

#include "corvane/cache/validation_cache.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/testing/thrown.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace corvane {
namespace {

// An entity whose hooks record what they see: each entry is the hook's name and whether the
// entity's cache entry existed at that moment.
class HookedEntity final : public TrackableEntity {
 public:
  explicit HookedEntity(std::string id) : id_(std::move(id)) {}

  std::string entityId() const override { return id_; }
  std::string entityName() const override { return "Hooked"; }
  bool hasUnsavedChanges() const override { return false; }
  std::string changeDescription() const override { return ""; }
  ValidationResult validationResult() const override { return ValidationResult::valid(); }

  boost::asio::awaitable<void> willSave() override {
    record("willSave");
    if (failWillSave) throw std::runtime_error("store unreachable");
    co_return;
  }
  boost::asio::awaitable<void> didSave() override {
    record("didSave");
    co_return;
  }
  void willDiscard() override { record("willDiscard"); }
  void didDiscard() override { record("didDiscard"); }

  bool failWillSave = false;
  std::vector<std::string> log;

 private:
  void record(const std::string& hook) {
    log.push_back(hook + (ValidationCache::shared().entry(id_ + ":validation") ? " (cached)" : " (gone)"));
  }

  std::string id_;
};

// An entity that keeps every default and reports a fixed verdict.
class PlainEntity final : public TrackableEntity {
 public:
  PlainEntity(std::string id, ValidationResult verdict) : id_(std::move(id)), verdict_(std::move(verdict)) {}

  std::string entityId() const override { return id_; }
  std::string entityName() const override { return "Plain"; }
  bool hasUnsavedChanges() const override { return false; }
  std::string changeDescription() const override { return ""; }
  ValidationResult validationResult() const override { return verdict_; }

 private:
  std::string id_;
  ValidationResult verdict_;
};

/// Caches a verdict under the entity's key; true when the entry is there afterwards.
bool cacheEntryFor(const std::string& entityId) {
  ValidationCache::shared().getOrCompute(entityId + ":validation", "hash", [] { return ValidationResult::info(); });
  return ValidationCache::shared().entry(entityId + ":validation").has_value();
}

bool isCached(const std::string& entityId) {
  return ValidationCache::shared().entry(entityId + ":validation").has_value();
}

TEST(TrackableEntitySave, InvalidatesTheCacheEntryBetweenTheHooks) {
  testing::TestMainLoop loop;
  HookedEntity entity("entity-save-ok");
  ASSERT_TRUE(cacheEntryFor(entity.entityId()));
  loop.run(entity.saveChanges());
  EXPECT_EQ(entity.log, (std::vector<std::string>{"willSave (cached)", "didSave (gone)"}));
  EXPECT_FALSE(isCached(entity.entityId()));
}

TEST(TrackableEntitySave, FailingWillSaveAbortsBeforeTheCacheIsTouched) {
  testing::TestMainLoop loop;
  HookedEntity entity("entity-save-fails");
  entity.failWillSave = true;
  ASSERT_TRUE(cacheEntryFor(entity.entityId()));
  EXPECT_EQ(testing::thrownMessage<std::runtime_error>([&] { loop.run(entity.saveChanges()); }), "store unreachable");
  EXPECT_EQ(entity.log, (std::vector<std::string>{"willSave (cached)"})) << "didSave must not run";
  EXPECT_TRUE(isCached(entity.entityId()));
}

TEST(TrackableEntityDiscard, InvalidatesTheCacheEntryBetweenTheHooks) {
  HookedEntity entity("entity-discard");
  ASSERT_TRUE(cacheEntryFor(entity.entityId()));
  entity.discardChanges();
  EXPECT_EQ(entity.log, (std::vector<std::string>{"willDiscard (cached)", "didDiscard (gone)"}));
  EXPECT_FALSE(isCached(entity.entityId()));
}

TEST(TrackableEntityDefaults, SaveAndDiscardWorkWithoutHooks) {
  testing::TestMainLoop loop;
  PlainEntity entity("entity-plain", ValidationResult::valid());
  ASSERT_TRUE(cacheEntryFor(entity.entityId()));
  loop.run(entity.saveChanges());
  EXPECT_FALSE(isCached(entity.entityId()));

  ASSERT_TRUE(cacheEntryFor(entity.entityId()));
  entity.discardChanges();
  EXPECT_FALSE(isCached(entity.entityId()));
  EXPECT_TRUE(entity.storedProperties().empty());
}

TEST(TrackableEntityDefaults, SaveLeavesOtherEntitiesEntriesAlone) {
  testing::TestMainLoop loop;
  PlainEntity entity("entity-a", ValidationResult::valid());
  ASSERT_TRUE(cacheEntryFor("entity-ab"));
  ASSERT_TRUE(cacheEntryFor("entity-a"));
  loop.run(entity.saveChanges());
  EXPECT_FALSE(isCached("entity-a"));
  EXPECT_TRUE(isCached("entity-ab")) << "only the exact key goes, not every key it prefixes";
}

TEST(TrackableEntityDefaults, IsValidFollowsTheVerdict) {
  const auto missingOptional = ValidationResult::missingOptional("Subtitle", "Subtitles sell", {"Add one"});
  EXPECT_TRUE(PlainEntity("v1", missingOptional).isValid()) << "a warning that is still valid";
  EXPECT_FALSE(PlainEntity("v2", ValidationResult::warning()).isValid());
  EXPECT_FALSE(PlainEntity("v3", ValidationResult::required("Name")).isValid());
  EXPECT_TRUE(PlainEntity("v4", ValidationResult::validRequired("Name")).isValid());
}

}  // namespace
}  // namespace corvane

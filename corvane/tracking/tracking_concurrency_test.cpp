#include "corvane/cache/validation_cache.hpp"
#include "corvane/support/sleep.hpp"
#include "corvane/testing/test_main_loop.hpp"
#include "corvane/tracking/tracked.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <gtest/gtest.h>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/thread_pool.hpp>

#include <atomic>
#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace corvane {
namespace {

using namespace std::chrono_literals;

// Properties come and go on several threads at once, each built where the last one lived
// and with the same value, and each with a verdict of its own: the shared cache must never
// hand one of them another's verdict.
TEST(TrackingConcurrency, PropertiesBuiltWhereOthersLivedGetTheirOwnCachedVerdicts) {
  testing::TestMainLoop loop;
  constexpr int kThreads = 4;
  constexpr int kProperties = 500;
  std::atomic<int> wrongVerdicts{0};
  std::vector<std::vector<std::string>> keys(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kProperties; ++i) {
        const std::string mine = std::to_string(t) + "/" + std::to_string(i);
        Tracked<std::string> property("same value",
                                      {[mine](const std::string&) { return ValidationResult::info(mine); }});
        if (property.validateCached().message != mine) ++wrongVerdicts;
        keys[t].push_back(property.identityKey() + ":same value");
      }
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& threadKeys : keys) {
    for (const auto& key : threadKeys) ValidationCache::shared().invalidate(key);
  }
  EXPECT_EQ(wrongVerdicts.load(), 0);
}

// A small entity of two tracked fields whose save waits, marks the fields saved and drops
// its cached verdict, like the showcase entities.
class NoteEntity final : public TrackableEntity {
 public:
  explicit NoteEntity(std::string id) : id_(std::move(id)) {}
  std::string entityId() const override { return id_; }
  std::string entityName() const override { return "Note " + id_; }
  bool hasUnsavedChanges() const override { return title.hasChanged() || body.hasChanged(); }
  std::string changeDescription() const override { return title.changeDescription(); }
  ValidationResult validationResult() const override { return title.validationResult(); }
  boost::asio::awaitable<void> saveChanges() override {
    co_await sleepFor(1ms);
    title.markSaved();
    body.markSaved();
    ValidationCache::shared().invalidate(id_ + ":validation");
    saves->fetch_add(1);
  }
  void discardChanges() override {
    title.discardChanges();
    body.discardChanges();
  }
  std::vector<StoredProperty> storedProperties() override { return {{"_title", &title}, {"_body", &body}}; }

  Tracked<std::string> title{""};
  Tracked<std::string> body{""};
  std::atomic<int>* saves = nullptr;

 private:
  std::string id_;
};

// Trackers and their entities are handed to a pool of threads to submit, and the test lets
// go of them at once: each submit keeps its tracker, and the tracker its entities, until
// the saves are done, and the last of them is destroyed on a pool thread. The tracker is
// used from one strand at a time, as from a user-interface thread.
TEST(TrackingConcurrency, TrackersAndEntitiesDroppedWhileAPoolSubmitsThem) {
  boost::asio::thread_pool pool(2);
  constexpr int kRounds = 40;
  constexpr int kEntities = 4;
  std::atomic<int> saves{0};
  std::vector<std::future<std::exception_ptr>> outcomes;
  std::vector<std::weak_ptr<UnifiedChangeTracker>> trackers;
  for (int round = 0; round < kRounds; ++round) {
    auto tracker = std::make_shared<UnifiedChangeTracker>();
    for (int e = 0; e < kEntities; ++e) {
      auto entity = std::make_shared<NoteEntity>(std::to_string(round) + "-" + std::to_string(e));
      entity->saves = &saves;
      entity->title.setWrappedValue("edited");
      tracker->register_(entity);
    }
    auto done = std::make_shared<std::promise<std::exception_ptr>>();
    outcomes.push_back(done->get_future());
    trackers.push_back(tracker);
    auto strand = boost::asio::make_strand(pool);
    auto operation = round % 2 == 0 ? tracker->submitAll() : tracker->submit(std::to_string(round) + "-0");
    boost::asio::co_spawn(strand, std::move(operation), [done](std::exception_ptr error) { done->set_value(error); });
  }  // every tracker and entity is now owned by its submit alone
  for (auto& outcome : outcomes) EXPECT_EQ(outcome.get(), nullptr);
  pool.join();
  EXPECT_EQ(saves.load(), kRounds / 2 * kEntities + kRounds / 2);
  for (const auto& tracker : trackers) EXPECT_TRUE(tracker.expired());
}

}  // namespace
}  // namespace corvane

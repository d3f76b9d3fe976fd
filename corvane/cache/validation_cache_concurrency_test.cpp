#include "corvane/cache/validation_cache.hpp"

#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace corvane {
namespace {

ValidationResult verdictFor(const std::string& key) {
  return ValidationResult::info(key);
}

// Several threads hammer one cache with every operation at once. ThreadSanitizer watches
// the locking; the assertions check that no lookup was lost or answered wrongly.
TEST(ValidationCacheConcurrency, MixedOperationsKeepTheCountsConsistent) {
  testing::TestMainLoop loop;
  auto cache = ValidationCache::create({64, 60.0, true});
  constexpr int kThreads = 4;
  constexpr int kOperations = 3000;
  std::atomic<int> lookups{0};
  std::atomic<int> wrongAnswers{0};

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kOperations; ++i) {
        const std::string key = "entity" + std::to_string((i * 7 + t) % 100) + ":validation";
        switch (i % 6) {
          case 0:
          case 1: {
            auto result = cache->getOrCompute(key, "hash", [&] { return verdictFor(key); });
            if (result.message != key) ++wrongAnswers;
            ++lookups;
            break;
          }
          case 2: {
            auto result = cache->validate(key, key, verdictFor);
            if (result.message != key) ++wrongAnswers;
            ++lookups;
            break;
          }
          case 3:
            cache->invalidate(key);
            break;
          case 4:
            cache->invalidatePrefix("entity" + std::to_string(i % 10));
            break;
          case 5: {
            auto statistics = cache->getStatistics();
            if (statistics.cacheHits + statistics.cacheMisses > statistics.totalRequests) ++wrongAnswers;
            break;
          }
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();

  auto statistics = cache->getStatistics();
  EXPECT_EQ(wrongAnswers.load(), 0);
  EXPECT_EQ(statistics.totalRequests, lookups.load());
  EXPECT_EQ(statistics.totalRequests, statistics.cacheHits + statistics.cacheMisses);
  EXPECT_GT(statistics.cacheHits, 0);
  loop.drain();
  EXPECT_EQ(cache->cacheSize(), cache->getStatistics().cacheSize);
}

TEST(ValidationCacheConcurrency, ClearRacingLookupsLeavesAUsableCache) {
  testing::TestMainLoop loop;
  auto cache = ValidationCache::create({32, 60.0, true});
  std::atomic<bool> stop{false};
  std::thread clearer([&] {
    while (!stop.load()) cache->clear();
  });
  std::vector<std::thread> readers;
  for (int t = 0; t < 3; ++t) {
    readers.emplace_back([&, t] {
      for (int i = 0; i < 2000; ++i) {
        const std::string key = std::to_string((i + t) % 50);
        cache->getOrCompute(key, "", [&] { return verdictFor(key); });
        (void)cache->totalRequests();
      }
    });
  }
  for (auto& reader : readers) reader.join();
  stop = true;
  clearer.join();
  cache->clear();  // the clearer's last pass may have started before the last lookup
  loop.drain();    // the resets run here, on this thread
  EXPECT_EQ(cache->totalRequests(), 0);
  EXPECT_EQ(cache->getStatistics().cacheSize, 0);
  EXPECT_EQ(cache->getOrCompute("after", "", [] { return verdictFor("after"); }).message, "after");
}

}  // namespace
}  // namespace corvane

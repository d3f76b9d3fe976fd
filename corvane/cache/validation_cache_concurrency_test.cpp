#include "corvane/cache/validation_cache.hpp"

#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
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

// Hits from several threads, also on the same entries, keep every count and sequence exact:
// each entry is counted once per hit, holds the largest sequence drawn for it, no two
// entries hold the same one, and the next stores evict exactly the least recently used.
TEST(ValidationCacheConcurrency, HitsFromManyThreadsKeepCountsSequencesAndEvictionExact) {
  testing::TestMainLoop loop;
  constexpr int kEntries = 32;
  constexpr int kThreads = 4;
  constexpr int kRounds = 200;
  auto cache = ValidationCache::create({kEntries, 60.0, true});
  const auto key = [](int i) { return "entity" + std::to_string(i); };
  for (int i = 0; i < kEntries; ++i) cache->getOrCompute(key(i), "h", [&] { return verdictFor(key(i)); });

  std::atomic<int> wrongAnswers{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        for (int i = 0; i < kEntries; ++i) {
          // Each thread walks the entries in its own order, so that they meet on every one.
          const int index = (i * (2 * t + 1) + round) % kEntries;
          auto result = cache->getOrCompute(key(index), "h", [] { return verdictFor("recomputed"); });
          if (result.message != key(index)) ++wrongAnswers;
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(wrongAnswers.load(), 0);

  constexpr std::int64_t kHits = std::int64_t{kThreads} * kRounds * kEntries;
  EXPECT_EQ(cache->getStatistics(), ValidationCache::Statistics(kEntries + kHits, kHits, kEntries, kEntries,
                                                                kEntries * ValidationCache::kBytesPerEntry));
  std::vector<std::pair<std::int64_t, int>> byRecency;
  for (int i = 0; i < kEntries; ++i) {
    auto entry = cache->entry(key(i));
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->accessCount, 1 + kThreads * kRounds);
    byRecency.emplace_back(entry->lastAccessSequence, i);
  }
  std::sort(byRecency.begin(), byRecency.end());
  EXPECT_EQ(std::adjacent_find(byRecency.begin(), byRecency.end(),
                               [](const auto& a, const auto& b) { return a.first == b.first; }),
            byRecency.end());
  EXPECT_EQ(byRecency.back().first, kEntries + kHits) << "the last hit drew the last sequence";

  // Half as many new entries evict the older half, and nothing else.
  for (int i = 0; i < kEntries / 2; ++i)
    cache->getOrCompute("new" + std::to_string(i), "h", [] { return verdictFor("new"); });
  for (int rank = 0; rank < kEntries; ++rank) {
    EXPECT_EQ(cache->entry(key(byRecency[rank].second)).has_value(), rank >= kEntries / 2) << "rank " << rank;
  }
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

// Caches are used from several threads and dropped by their creator while those threads,
// and the main loop running on a thread of its own, still use them: lookups whose
// computations call back into the cache or throw, removals, and the announcements queued
// for the main loop, whose observers the creator disconnects meanwhile.
TEST(ValidationCacheConcurrency, CachesDroppedWhileOtherThreadsAndTheMainLoopUseThem) {
  testing::TestMainLoop loop;
  std::atomic<bool> stop{false};
  std::thread mainLoop([&] {
    while (!stop.load()) loop.drain();
  });
  constexpr int kRounds = 30;
  constexpr int kUsers = 3;
  std::atomic<int> wrongAnswers{0};
  std::atomic<int> announcements{0};
  std::vector<std::weak_ptr<ValidationCache>> dropped;
  for (int round = 0; round < kRounds; ++round) {
    auto cache = ValidationCache::create({16, 60.0, true});
    dropped.push_back(cache);
    auto onHits = cache->observe("cacheHits", [&] { announcements.fetch_add(1); });
    auto onSize = cache->observe("cacheSize", [&] { announcements.fetch_add(1); });
    std::vector<std::thread> users;
    for (int u = 0; u < kUsers; ++u) {
      users.emplace_back([cache, u, &wrongAnswers] {
        for (int i = 0; i < 300; ++i) {
          const std::string key = "k" + std::to_string((i + u) % 24);
          switch (i % 5) {
            case 0:
            case 1: {
              auto result = cache->getOrCompute(key, "h", [&] {
                // A computation that asks its own cache for another key.
                cache->validate(key + ":inner", i, [](int) { return ValidationResult::valid(); });
                return verdictFor(key);
              });
              if (result.message != key) ++wrongAnswers;
              break;
            }
            case 2:
              try {
                cache->getOrCompute(key + ":failing", "h",
                                    []() -> ValidationResult { throw std::runtime_error("no"); });
                ++wrongAnswers;
              } catch (const std::runtime_error&) {
              }
              break;
            case 3:
              cache->invalidatePrefix(key);
              break;
            case 4:
              if (i % 50 == 4) cache->clear();
              (void)cache->getStatistics();
              break;
          }
        }
      });
    }
    // The creator lets go first: the last user destroys the cache, while queued work for
    // it may still be waiting on the main loop.
    onHits.disconnect();
    onSize.disconnect();
    cache.reset();
    for (auto& user : users) user.join();
  }
  stop = true;
  mainLoop.join();
  EXPECT_EQ(wrongAnswers.load(), 0);
  for (const auto& cache : dropped) EXPECT_TRUE(cache.expired());
}

}  // namespace
}  // namespace corvane

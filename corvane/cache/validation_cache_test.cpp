#include "corvane/cache/validation_cache.hpp"

#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace corvane {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::system_clock;

// A private cache over a clock that only moves when the test says so.
class ValidationCacheTest : public ::testing::Test {
 protected:
  std::shared_ptr<ValidationCache> makeCache(std::int64_t maxSize = 100, double maxAge = 60.0, bool statistics = true) {
    return ValidationCache::create({maxSize, maxAge, statistics}, [this] { return now; });
  }

  // A computation that says which call it was, so that a test sees whether it ran.
  std::function<ValidationResult()> counted(std::string label) {
    return [this, label] {
      ++computations;
      return ValidationResult::failure(ValidationSeverity::error, label + " #" + std::to_string(computations));
    };
  }

  testing::TestMainLoop loop;
  Clock::time_point now = Clock::time_point{} + 1000h;
  int computations = 0;
};

TEST_F(ValidationCacheTest, SameKeyAndHashWithinMaxAgeComputesOnce) {
  auto cache = makeCache();
  auto first = cache->getOrCompute("app:name", "h1", counted("name"));
  now += 59s;
  auto second = cache->getOrCompute("app:name", "h1", counted("name"));
  EXPECT_EQ(computations, 1);
  EXPECT_EQ(second, first);
  EXPECT_EQ(cache->entry("app:name")->accessCount, 2);
  auto statistics = cache->getStatistics();
  EXPECT_EQ(statistics.totalRequests, 2);
  EXPECT_EQ(statistics.cacheHits, 1);
  EXPECT_EQ(statistics.cacheMisses, 1);
  EXPECT_DOUBLE_EQ(statistics.hitRate, 0.5);
}

TEST_F(ValidationCacheTest, AnotherDependencyHashRecomputesAndReplacesTheEntry) {
  auto cache = makeCache();
  cache->getOrCompute("k", "h1", counted("k"));
  auto replaced = cache->getOrCompute("k", "h2", counted("k"));
  EXPECT_EQ(computations, 2);
  EXPECT_EQ(replaced.message, "k #2");
  EXPECT_EQ(cache->entry("k")->dependencyHash, "h2");
  EXPECT_EQ(cache->entry("k")->accessCount, 1);
  cache->getOrCompute("k", "h1", counted("k"));  // the old hash no longer matches either
  EXPECT_EQ(computations, 3);
}

TEST_F(ValidationCacheTest, AnEntryExactlyMaxAgeOldIsStillFreshAndOneTickMoreIsNot) {
  auto cache = makeCache(100, 60.0);
  cache->getOrCompute("k", "h", counted("k"));
  now += 60s;
  cache->getOrCompute("k", "h", counted("k"));
  EXPECT_EQ(computations, 1);
  now += 1us;
  cache->getOrCompute("k", "h", counted("k"));
  EXPECT_EQ(computations, 2);
}

TEST_F(ValidationCacheTest, EvictsTheLeastRecentlyUsedEntryAndAHitRefreshesAnEntry) {
  auto cache = makeCache(2);
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("b", "", counted("b"));
  cache->getOrCompute("a", "", counted("a"));  // a hit: b is now the least recently used
  cache->getOrCompute("c", "", counted("c"));
  EXPECT_TRUE(cache->entry("a"));
  EXPECT_FALSE(cache->entry("b"));
  EXPECT_TRUE(cache->entry("c"));
  EXPECT_EQ(cache->getStatistics().cacheSize, 2);
  cache->getOrCompute("d", "", counted("d"));  // exactly one goes: the oldest store, a
  EXPECT_FALSE(cache->entry("a"));
  EXPECT_TRUE(cache->entry("c"));
  EXPECT_TRUE(cache->entry("d"));
}

TEST_F(ValidationCacheTest, EntriesStoredByValidateAreNeverEvictedByTheStoreItself) {
  auto cache = makeCache(2);
  for (int i = 0; i < 5; ++i) {
    cache->validate("v" + std::to_string(i), i,
                    [&](int value) { return ValidationResult::info(std::to_string(value)); });
  }
  EXPECT_EQ(cache->getStatistics().cacheSize, 5);
  EXPECT_EQ(cache->entry("v3")->dependencyHash, "");
  // The next lookup that evicts trims back to the bound, least recently used first.
  cache->getOrCompute("g", "", counted("g"));
  EXPECT_EQ(cache->getStatistics().cacheSize, 2);
  EXPECT_TRUE(cache->entry("v4"));
  EXPECT_TRUE(cache->entry("g"));
}

TEST_F(ValidationCacheTest, ValidateIgnoresTheValueAndChecksAgeOnly) {
  auto cache = makeCache(10, 5.0);
  int calls = 0;
  auto validator = [&](const std::string& value) {
    ++calls;
    return ValidationResult::info(value);
  };
  EXPECT_EQ(cache->validate("key", std::string("first"), validator).message, "first");
  EXPECT_EQ(cache->validate("key", std::string("second"), validator).message, "first");
  now += 6s;
  EXPECT_EQ(cache->validate("key", std::string("third"), validator).message, "third");
  EXPECT_EQ(calls, 2);
}

TEST_F(ValidationCacheTest, WithoutStatisticsCountersStayZeroButSizeIsStillPublished) {
  auto cache = makeCache(10, 60.0, false);
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("a", "", counted("a"));
  loop.drain();
  auto statistics = cache->getStatistics();
  EXPECT_EQ(statistics.totalRequests, 0);
  EXPECT_EQ(statistics.cacheHits, 0);
  EXPECT_EQ(statistics.cacheMisses, 0);
  EXPECT_EQ(statistics.hitRate, 0.0);
  EXPECT_EQ(cache->cacheSize(), 1);
  EXPECT_EQ(cache->memoryUsage(), 250);
}

TEST_F(ValidationCacheTest, PublishesSizeAndMemoryOnlyWhenTheMainLoopRuns) {
  auto cache = makeCache();
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("b", "", counted("b"));
  EXPECT_EQ(cache->cacheSize(), 0);
  EXPECT_EQ(cache->getStatistics().cacheSize, 2);
  loop.drain();
  EXPECT_EQ(cache->cacheSize(), 2);
  EXPECT_EQ(cache->memoryUsage(), 500);
}

TEST_F(ValidationCacheTest, InvalidatePrefixRemovesOnlyMatchingKeys) {
  auto cache = makeCache();
  for (const char* key : {"app-name", "app:validation", "user:validation", "ap"}) {
    cache->getOrCompute(key, "", counted(key));
  }
  cache->invalidatePrefix("app");
  EXPECT_FALSE(cache->entry("app-name"));
  EXPECT_FALSE(cache->entry("app:validation"));
  EXPECT_TRUE(cache->entry("user:validation"));
  EXPECT_TRUE(cache->entry("ap"));
  cache->invalidate("user:validation");
  cache->invalidate("never-stored");
  EXPECT_EQ(cache->getStatistics().cacheSize, 1);
  loop.drain();
  EXPECT_EQ(cache->cacheSize(), 1);
}

TEST_F(ValidationCacheTest, ClearEmptiesAtOnceButResetsCountersOnlyOnTheMainLoop) {
  auto cache = makeCache();
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("a", "", counted("a"));
  cache->clear();
  auto before = cache->getStatistics();
  EXPECT_EQ(before.cacheSize, 0);
  EXPECT_EQ(before.totalRequests, 2);
  EXPECT_EQ(before.cacheHits, 1);
  loop.drain();
  auto after = cache->getStatistics();
  EXPECT_EQ(after.totalRequests, 0);
  EXPECT_EQ(after.cacheHits, 0);
  EXPECT_EQ(after.cacheMisses, 0);
  // The logical clock is not reset: the next entry continues the sequence.
  cache->getOrCompute("b", "", counted("b"));
  EXPECT_EQ(cache->entry("b")->lastAccessSequence, 3);
}

TEST_F(ValidationCacheTest, CleanUpRemovesExpiredEntriesAndPrintsTheStatisticsLine) {
  auto cache = makeCache(100, 10.0);
  cache->getOrCompute("old", "", counted("old"));
  now += 8s;
  cache->getOrCompute("new", "", counted("new"));
  cache->getOrCompute("new", "", counted("new"));
  now += 2s;  // "old" is exactly 10 s old: still kept
  testing::CapturedLines lines;
  cache->cleanUp();
  EXPECT_TRUE(cache->entry("old"));
  now += 1s;
  cache->cleanUp();
  EXPECT_FALSE(cache->entry("old"));
  EXPECT_TRUE(cache->entry("new"));
  EXPECT_EQ(lines.lines(), (std::vector<std::string>{
                               "🔧 ValidationCache Stats: 1/3 hits (33.3%), 2 entries, 500 bytes",
                               "🔧 ValidationCache Stats: 1/3 hits (33.3%), 1 entries, 250 bytes",
                           }));
}

TEST_F(ValidationCacheTest, CleanUpStaysQuietWithoutRequestsOrStatistics) {
  testing::CapturedLines lines;
  makeCache()->cleanUp();
  auto quiet = makeCache(10, 60.0, false);
  quiet->getOrCompute("a", "", counted("a"));
  quiet->cleanUp();
  EXPECT_TRUE(lines.lines().empty());
}

TEST_F(ValidationCacheTest, ObserversSeeCounterChanges) {
  auto cache = makeCache();
  std::vector<std::int64_t> requests;
  auto connection = cache->observe("totalRequests", [&] { requests.push_back(cache->totalRequests()); });
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("a", "", counted("a"));
  EXPECT_EQ(requests, (std::vector<std::int64_t>{1, 2}));
  EXPECT_DOUBLE_EQ(cache->hitRate(), 0.5);
}

TEST(ValidationCacheStatistics, HitRateIsZeroBeforeAnyRequest) {
  EXPECT_EQ(ValidationCache::Statistics(0, 0, 0, 0, 0).hitRate, 0.0);
  EXPECT_EQ(ValidationCache::Statistics(-3, 1, 0, 0, 0).hitRate, 0.0);
  EXPECT_DOUBLE_EQ(ValidationCache::Statistics(3, 2, 1, 0, 0).hitRate, 2.0 / 3.0);
}

TEST(ValidationCacheShared, HasTheDocumentedConfiguration) {
  EXPECT_EQ(ValidationCache::shared().configuration(), (ValidationCache::Configuration{1000, 60.0, true}));
  EXPECT_EQ(&ValidationCache::shared(), &ValidationCache::shared());
}

TEST(ValidationCacheLifetime, ADestroyedCacheIgnoresWorkStillQueuedForIt) {
  testing::TestMainLoop loop;
  std::weak_ptr<ValidationCache> weak;
  {
    auto cache = ValidationCache::create({10, 60.0, true});
    weak = cache;
    cache->getOrCompute("a", "", [] { return ValidationResult::valid(); });
    cache->clear();
  }
  EXPECT_TRUE(weak.expired()) << "neither the timer nor queued work keeps the cache alive";
  EXPECT_GT(loop.drain(), 0u);
}

// Resource limits: a cache of 100,000 entries keeps hits, eviction order and the
// never-evicting `validate` path correct at that size.
TEST_F(ValidationCacheTest, HundredThousandEntriesHitEvictAndValidateCorrectly) {
  constexpr std::int64_t kCount = 100000;
  auto cache = makeCache(kCount);
  const auto key = [](std::int64_t i) { return "entity:" + std::to_string(i); };
  for (std::int64_t i = 0; i < kCount; ++i) cache->getOrCompute(key(i), "h", counted("first"));
  EXPECT_EQ(computations, kCount);
  EXPECT_EQ(cache->getStatistics().cacheSize, kCount);

  // All hits, in reverse order: the entry used longest ago is now the last key.
  for (std::int64_t i = kCount - 1; i >= 0; --i) cache->getOrCompute(key(i), "h", counted("again"));
  EXPECT_EQ(computations, kCount);
  EXPECT_EQ(cache->getStatistics().cacheHits, kCount);
  EXPECT_EQ(cache->entry(key(0))->accessCount, 2);

  // One more entry evicts exactly the least recently used one.
  cache->getOrCompute("extra", "h", counted("extra"));
  EXPECT_EQ(cache->getStatistics().cacheSize, kCount);
  EXPECT_FALSE(cache->entry(key(kCount - 1)).has_value());
  EXPECT_TRUE(cache->entry(key(kCount - 2)).has_value());
  EXPECT_TRUE(cache->entry("extra").has_value());

  // `validate` stores beyond the limit; the next lookup evicts back down to it.
  int validations = 0;
  for (std::int64_t i = 0; i < kCount; ++i) {
    cache->validate("value:" + std::to_string(i), i, [&](std::int64_t) {
      ++validations;
      return ValidationResult::valid();
    });
  }
  EXPECT_EQ(validations, kCount);
  EXPECT_EQ(cache->getStatistics().cacheSize, 2 * kCount);
  cache->getOrCompute("last", "h", counted("last"));
  EXPECT_EQ(cache->getStatistics().cacheSize, kCount);
  EXPECT_TRUE(cache->entry("last").has_value());
}

}  // namespace
}  // namespace corvane

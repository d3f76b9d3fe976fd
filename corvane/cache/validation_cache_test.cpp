#include "corvane/cache/validation_cache.hpp"

#include "corvane/observation/observation_tracking.hpp"
#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace corvane {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::system_clock;

// A private cache over clocks that only move when the test says so. `advance` moves both,
// as time does; a test moves `now` alone to correct the wall clock.
class ValidationCacheTest : public ::testing::Test {
 protected:
  std::shared_ptr<ValidationCache> makeCache(std::int64_t maxSize = 100, double maxAge = 60.0, bool statistics = true) {
    return ValidationCache::create({maxSize, maxAge, statistics}, {[this] { return now; }, [this] { return steady; }});
  }

  void advance(std::chrono::steady_clock::duration by) {
    now += std::chrono::duration_cast<Clock::duration>(by);
    steady += by;
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
  std::chrono::steady_clock::time_point steady = std::chrono::steady_clock::time_point{} + 5h;
  int computations = 0;
};

TEST_F(ValidationCacheTest, SameKeyAndHashWithinMaxAgeComputesOnce) {
  auto cache = makeCache();
  auto first = cache->getOrCompute("app:name", "h1", counted("name"));
  advance(59s);
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
  advance(60s);
  cache->getOrCompute("k", "h", counted("k"));
  EXPECT_EQ(computations, 1);
  advance(1us);
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
  advance(6s);
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
  advance(8s);
  cache->getOrCompute("new", "", counted("new"));
  cache->getOrCompute("new", "", counted("new"));
  advance(2s);  // "old" is exactly 10 s old: still kept
  testing::CapturedLines lines;
  cache->cleanUp();
  EXPECT_TRUE(cache->entry("old"));
  advance(1s);
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

// Counter announcements go to the main loop, whichever thread asked; a burst of lookups is
// announced once, after the counters already hold their new values.
TEST_F(ValidationCacheTest, CounterChangesAreAnnouncedOnTheMainLoop) {
  auto cache = makeCache();
  std::vector<std::int64_t> requests;
  std::vector<std::thread::id> announcers;
  int hitAnnouncements = 0;
  int missAnnouncements = 0;
  auto onRequests = cache->observe("totalRequests", [&] {
    requests.push_back(cache->totalRequests());
    announcers.push_back(std::this_thread::get_id());
  });
  auto onHits = cache->observe("cacheHits", [&] { ++hitAnnouncements; });
  auto onMisses = cache->observe("cacheMisses", [&] { ++missAnnouncements; });
  std::thread requester([&] {
    cache->getOrCompute("a", "", counted("a"));
    cache->getOrCompute("a", "", counted("a"));
  });
  requester.join();
  EXPECT_TRUE(requests.empty()) << "announced on the requesting thread";
  EXPECT_EQ(cache->getStatistics().totalRequests, 2) << "the counters themselves do not wait";
  loop.drain();
  EXPECT_EQ(requests, (std::vector<std::int64_t>{2}));
  EXPECT_EQ(announcers, (std::vector<std::thread::id>{std::this_thread::get_id()}));
  EXPECT_EQ(hitAnnouncements, 1);
  EXPECT_EQ(missAnnouncements, 1);
  EXPECT_DOUBLE_EQ(cache->hitRate(), 0.5);

  cache->getOrCompute("b", "", counted("b"));
  loop.drain();
  EXPECT_EQ(requests, (std::vector<std::int64_t>{2, 3}));
  EXPECT_EQ(hitAnnouncements, 1) << "only the counters that changed are announced";
  EXPECT_EQ(missAnnouncements, 2);
}

// Nothing observes the cache: its counters change at once but nothing is queued for them,
// and the size publications of a burst of changes are one post, which publishes the size
// the cache has when it runs; a size that did not change is not published again.
TEST_F(ValidationCacheTest, UnobservedChangesQueueOneSizePublicationAndNoAnnouncement) {
  auto cache = makeCache(3);
  for (const char* key : {"a", "b", "c", "d", "e"}) cache->getOrCompute(key, "", counted(key));
  cache->getOrCompute("e", "", counted("e"));
  cache->validate("v", 1, [&](int) { return counted("v")(); });
  cache->invalidate("c");
  cache->invalidatePrefix("d");
  EXPECT_EQ(cache->getStatistics(), ValidationCache::Statistics(7, 1, 6, 2, 500));
  EXPECT_EQ(cache->cacheSize(), 0);
  EXPECT_EQ(loop.drain(), 1u);
  EXPECT_EQ(cache->cacheSize(), 2);
  EXPECT_EQ(cache->memoryUsage(), 500);

  // A store that leaves the number of entries as it was has nothing to publish.
  cache->getOrCompute("e", "another hash", counted("e"));
  EXPECT_EQ(loop.drain(), 0u);

  // The next change queues the next publication.
  cache->clear();
  EXPECT_EQ(loop.drain(), 2u) << "the counter reset and one publication";
  EXPECT_EQ(cache->cacheSize(), 0);
  EXPECT_EQ(cache->totalRequests(), 0);
}

// A change made while a publication runs, here by an observer of the size, queues another
// one, so the figure still ends at the cache's size.
TEST_F(ValidationCacheTest, AChangeDuringAPublicationIsPublishedToo) {
  auto cache = makeCache();
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("b", "", counted("b"));
  std::vector<std::int64_t> published;
  auto onSize = cache->observe("cacheSize", [&] {
    published.push_back(cache->cacheSize());
    if (published.size() == 1) cache->invalidate("a");
  });
  cache->getOrCompute("c", "", counted("c"));
  loop.drain();
  EXPECT_EQ(published, (std::vector<std::int64_t>{3, 2}));
  EXPECT_EQ(cache->cacheSize(), 2);
}

// Once something observes the cache (an observer, or a tracking scope that read a counter),
// the counters changed since are announced; what changed before needs no announcement,
// since the values are read at once.
TEST_F(ValidationCacheTest, CountersAreAnnouncedOnlyOnceSomethingObserves) {
  auto cache = makeCache();
  cache->getOrCompute("a", "", counted("a"));
  cache->getOrCompute("a", "", counted("a"));
  EXPECT_EQ(loop.drain(), 1u) << "the size publication alone";

  int changes = 0;
  withObservationTracking([&] { return cache->cacheHits(); }, [&] { ++changes; });
  EXPECT_EQ(cache->hitRate(), 0.5) << "counted while nothing observed";
  cache->getOrCompute("a", "", counted("a"));
  EXPECT_EQ(changes, 0) << "announced on the main loop";
  loop.drain();
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(cache->cacheHits(), 2);

  int misses = 0;
  auto onMisses = cache->observe("cacheMisses", [&] { ++misses; });
  cache->getOrCompute("b", "", counted("b"));
  loop.drain();
  EXPECT_EQ(misses, 1);
  EXPECT_EQ(cache->getStatistics(), ValidationCache::Statistics(4, 2, 2, 2, 500));
}

// Eviction follows the access order exactly through hits, age-only stores beyond the bound,
// replacements under another hash and removals, checked step by step against a plain model
// of the entries' counts and sequences.
TEST_F(ValidationCacheTest, EvictionMatchesAPlainModelOfTheAccessOrder) {
  constexpr std::int64_t kBound = 16;
  auto cache = makeCache(kBound);
  struct Modelled {
    std::int64_t count;
    std::int64_t sequence;
    std::string hash;
  };
  std::map<std::string, Modelled> model;
  std::int64_t sequence = 0;
  const auto evict = [&] {
    while (static_cast<std::int64_t>(model.size()) > kBound) {
      auto oldest = std::min_element(model.begin(), model.end(), [](const auto& a, const auto& b) {
        return a.second.sequence < b.second.sequence;
      });
      model.erase(oldest);
    }
  };
  std::mt19937 random(21);
  for (int step = 0; step < 4000; ++step) {
    const std::string key = "k" + std::to_string(random() % 40);
    const std::string hash = random() % 8 == 0 ? "other" : "h";
    auto found = model.find(key);
    switch (random() % 8) {
      case 0:
        cache->invalidate(key);
        model.erase(key);
        break;
      case 1:
        cache->validate(key, 0, [&](int) { return counted(key)(); });
        if (found != model.end()) {
          found->second = {found->second.count + 1, ++sequence, found->second.hash};
        } else {
          model[key] = {1, ++sequence, ""};
        }
        break;
      default:
        cache->getOrCompute(key, hash, counted(key));
        if (found != model.end() && found->second.hash == hash) {
          found->second = {found->second.count + 1, ++sequence, hash};
        } else {
          model[key] = {1, ++sequence, hash};
          evict();
        }
        break;
    }
    ASSERT_EQ(cache->getStatistics().cacheSize, static_cast<std::int64_t>(model.size())) << "step " << step;
    for (const auto& [modelledKey, modelled] : model) {
      auto entry = cache->entry(modelledKey);
      ASSERT_TRUE(entry) << "step " << step << ": " << modelledKey;
      ASSERT_EQ(std::tuple(entry->accessCount, entry->lastAccessSequence, entry->dependencyHash),
                std::tuple(modelled.count, modelled.sequence, modelled.hash))
          << "step " << step << ": " << modelledKey;
    }
  }
}

// Correcting the wall clock neither expires a young entry nor keeps an old one: ages are
// measured on the steady clock, and the wall clock only stamps the entry.
TEST_F(ValidationCacheTest, WallClockCorrectionsDoNotChangeAges) {
  struct Case {
    const char* name;
    std::chrono::hours correction;
    std::chrono::seconds elapsed;
    bool fresh;
  };
  const Case cases[] = {
      {"set back, young entry", -2h, 30s, true},
      {"set back, old entry", -2h, 61s, false},
      {"set forward, young entry", 2h, 30s, true},
      {"set forward, old entry", 2h, 61s, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto cache = makeCache(100, 60.0);
    computations = 0;
    const auto storedAt = now;
    cache->getOrCompute("k", "h", counted("k"));
    cache->validate("v", 1, [&](int) { return counted("v")(); });
    EXPECT_EQ(cache->entry("k")->timestamp, storedAt);
    now += c.correction;
    advance(c.elapsed);
    cache->cleanUp();
    EXPECT_EQ(cache->entry("k").has_value(), c.fresh) << "clean-up";
    cache->getOrCompute("k", "h", counted("k"));
    cache->validate("v", 1, [&](int) { return counted("v")(); });
    EXPECT_EQ(computations, c.fresh ? 2 : 4) << "lookups";
  }
}

// A computation that throws leaves nothing behind but its count: a request and a miss.
TEST_F(ValidationCacheTest, AThrowingComputationCountsAsAMissAndReachesTheCaller) {
  auto cache = makeCache();
  const auto fail = []() -> ValidationResult { throw std::runtime_error("rule failed"); };
  EXPECT_THROW(cache->getOrCompute("k", "h", fail), std::runtime_error);
  EXPECT_THROW(cache->validate("v", 1, [&](int) { return fail(); }), std::runtime_error);
  auto statistics = cache->getStatistics();
  EXPECT_EQ(statistics.totalRequests, 2);
  EXPECT_EQ(statistics.cacheMisses, 2);
  EXPECT_EQ(statistics.cacheHits, 0);
  EXPECT_EQ(statistics.cacheSize, 0);
  EXPECT_EQ(cache->getOrCompute("k", "h", counted("k")).message, "k #1") << "the cache is still usable";
}

// A computation may use the cache it runs in, for other keys, even when what it does
// removes or evicts the entry its own lookup found.
TEST_F(ValidationCacheTest, AComputationMayCallBackIntoItsCacheForOtherKeys) {
  auto cache = makeCache(2);
  cache->getOrCompute("outer", "old", counted("stale"));
  auto outer = cache->getOrCompute("outer", "new", [&] {
    cache->invalidate("outer");
    auto inner = cache->getOrCompute("inner", "h", counted("inner"));
    EXPECT_TRUE(cache->entry("inner"));
    cache->validate("fill", 0, [&](int) { return counted("fill")(); });
    cache->getOrCompute("evicting", "h", counted("evicting"));
    EXPECT_EQ(cache->getStatistics().totalRequests, 5);
    return ValidationResult::info("outer saw " + inner.message);
  });
  EXPECT_EQ(outer.message, "outer saw inner #2");
  EXPECT_EQ(cache->entry("outer")->dependencyHash, "new");
  EXPECT_EQ(cache->getStatistics().cacheMisses, 5);
  EXPECT_EQ(cache->getStatistics().cacheSize, 2);
}

TEST_F(ValidationCacheTest, AComputationAskingForItsOwnKeyIsAPreconditionFailure) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  auto cache = makeCache();
  EXPECT_DEATH(cache->getOrCompute("app:name", "h", [&] { return cache->getOrCompute("app:name", "h", counted("k")); }),
               "precondition failed: .*'app:name'");
  EXPECT_DEATH(cache->validate(
                   "v", 1, [&](int) { return cache->validate("v", 2, [](int) { return ValidationResult::valid(); }); }),
               "precondition failed: .*'v'");
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

// What a tracked property and the validation cache cost: the size of an unobserved
// property, a write with and without observers, and cache hits and misses beside a bare map.
#include "corvane/cache/validation_cache.hpp"
#include "corvane/tracking/tracked.hpp"

#include <benchmark/benchmark.h>

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace {

using corvane::Tracked;
using corvane::ValidationCache;
using corvane::ValidationResult;

ValidationResult lengthRule(const std::string& value) {
  return value.size() > 30 ? ValidationResult::failure(corvane::ValidationSeverity::error, "too long")
                           : ValidationResult::valid();
}

void TrackedSize(benchmark::State& state) {
  for (auto _ : state) {
    Tracked<std::string> property("name", {lengthRule});
    benchmark::DoNotOptimize(property);
  }
  state.counters["bytes"] = sizeof(Tracked<std::string>);
  state.counters["ValidationResult bytes"] = sizeof(ValidationResult);
}
BENCHMARK(TrackedSize);

// The floor under a tracked property: a plain string and its rule's verdict, no property.
void PlainValueAndVerdictBaseline(benchmark::State& state) {
  const std::string values[] = {"Weather", "Weather Pro"};
  std::size_t i = 0;
  for (auto _ : state) {
    std::string value = values[i++ & 1];
    benchmark::DoNotOptimize(lengthRule(value));
    benchmark::DoNotOptimize(value);
  }
}
BENCHMARK(PlainValueAndVerdictBaseline);

// Alternating values, so that every write revalidates.
void TrackedWriteUnobserved(benchmark::State& state) {
  Tracked<std::string> property("", {lengthRule});
  const std::string values[] = {"Weather", "Weather Pro"};
  std::size_t i = 0;
  for (auto _ : state) property.setWrappedValue(values[i++ & 1]);
}
BENCHMARK(TrackedWriteUnobserved);

void TrackedWriteObserved(benchmark::State& state) {
  Tracked<std::string> property("", {lengthRule});
  int calls = 0;
  auto storage = property.observe("storage", [&] { ++calls; });
  auto verdict = property.observe("cachedValidationResult", [&] { ++calls; });
  const std::string values[] = {"Weather", "Weather Pro"};
  std::size_t i = 0;
  for (auto _ : state) property.setWrappedValue(values[i++ & 1]);
  benchmark::DoNotOptimize(calls);
}
BENCHMARK(TrackedWriteObserved);

void CacheHit(benchmark::State& state) {
  auto cache = ValidationCache::create({1000, 60.0, true});
  cache->getOrCompute("entity:validation", "h", [] { return ValidationResult::valid(); });
  for (auto _ : state) {
    benchmark::DoNotOptimize(cache->getOrCompute("entity:validation", "h", [] { return ValidationResult::valid(); }));
  }
}
BENCHMARK(CacheHit);

// Two threads hitting the same entry of one cache. Every hit writes (the entry's count, the
// access sequence), so they contend for it whatever the lock.
std::shared_ptr<ValidationCache> contendedCache;

void CacheHitContended(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        contendedCache->getOrCompute("entity:validation", "h", [] { return ValidationResult::valid(); }));
  }
}
BENCHMARK(CacheHitContended)
    ->Setup([](const benchmark::State&) {
      contendedCache = ValidationCache::create({1000, 60.0, true});
      contendedCache->getOrCompute("entity:validation", "h", [] { return ValidationResult::valid(); });
    })
    ->Teardown([](const benchmark::State&) { contendedCache.reset(); })
    ->Threads(2)
    ->UseRealTime();

// A hit through `validate`, where freshness depends on age alone.
void CacheHitByAge(benchmark::State& state) {
  auto cache = ValidationCache::create({1000, 60.0, true});
  const std::string value = "Weather";
  cache->validate("entity:validation", value, lengthRule);
  for (auto _ : state) benchmark::DoNotOptimize(cache->validate("entity:validation", value, lengthRule));
}
BENCHMARK(CacheHitByAge);

// Every lookup misses and, past the bound, evicts the least recently used entry.
void CacheMissWithEviction(benchmark::State& state) {
  auto cache = ValidationCache::create({static_cast<std::int64_t>(state.range(0)), 60.0, true});
  std::int64_t key = 0;
  for (auto _ : state) {
    cache->getOrCompute(std::to_string(key++), "", [] { return ValidationResult::valid(); });
  }
}
BENCHMARK(CacheMissWithEviction)->Arg(1000)->Arg(100000);

// Baselines for the cache: the same work on a bare map, without clock, recency or counters,
// which is the least a memoising cache can cost. A hit is looked up as the cache looks it up:
// by a string view through a transparent hash, under a shared lock, the verdict copied out.
struct TransparentHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view key) const noexcept { return std::hash<std::string_view>{}(key); }
};

void SharedLockMapHitBaseline(benchmark::State& state) {
  std::unordered_map<std::string, ValidationResult, TransparentHash, std::equal_to<>> map;
  std::shared_mutex mutex;
  map.emplace("entity:validation", ValidationResult::valid());
  const std::string_view key = "entity:validation";
  for (auto _ : state) {
    std::shared_lock lock(mutex);
    benchmark::DoNotOptimize(ValidationResult(map.find(key)->second));
  }
}
BENCHMARK(SharedLockMapHitBaseline);

// The same lookup from two threads at once: readers share the lock, and only its count moves.
std::unordered_map<std::string, ValidationResult, TransparentHash, std::equal_to<>> contendedMap;
std::shared_mutex contendedMapMutex;

void SharedLockMapHitContendedBaseline(benchmark::State& state) {
  const std::string_view key = "entity:validation";
  for (auto _ : state) {
    std::shared_lock lock(contendedMapMutex);
    benchmark::DoNotOptimize(ValidationResult(contendedMap.find(key)->second));
  }
}
BENCHMARK(SharedLockMapHitContendedBaseline)
    ->Setup([](const benchmark::State&) { contendedMap.emplace("entity:validation", ValidationResult::valid()); })
    ->Teardown([](const benchmark::State&) { contendedMap.clear(); })
    ->Threads(2)
    ->UseRealTime();

// A bare least-recently-used map: insert, and past the bound erase the oldest key.
void MapMissWithEvictionBaseline(benchmark::State& state) {
  const auto bound = static_cast<std::size_t>(state.range(0));
  std::unordered_map<std::string, ValidationResult> map;
  std::list<std::string> order;
  std::int64_t key = 0;
  for (auto _ : state) {
    const auto entry = map.emplace(std::to_string(key++), ValidationResult::valid()).first;
    order.push_back(entry->first);
    if (map.size() > bound) {
      map.erase(order.front());
      order.pop_front();
    }
  }
}
BENCHMARK(MapMissWithEvictionBaseline)->Arg(1000)->Arg(100000);

}  // namespace

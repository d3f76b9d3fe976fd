// What a tracked property and the validation cache cost: the size of an unobserved
// property, a write with and without observers, and cache hits and misses.
#include "corvane/cache/validation_cache.hpp"
#include "corvane/tracking/tracked.hpp"

#include <benchmark/benchmark.h>

#include <string>

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

// Every lookup misses and, past the bound, evicts the least recently used entry.
void CacheMissWithEviction(benchmark::State& state) {
  auto cache = ValidationCache::create({static_cast<std::int64_t>(state.range(0)), 60.0, true});
  std::int64_t key = 0;
  for (auto _ : state) {
    cache->getOrCompute(std::to_string(key++), "", [] { return ValidationResult::valid(); });
  }
}
BENCHMARK(CacheMissWithEviction)->Arg(1000)->Arg(100000);

}  // namespace

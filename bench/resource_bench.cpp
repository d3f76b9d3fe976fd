// Resource limits: memory per registered entity, per cache entry and per tracking scope
// (live heap bytes counted by replacing the global allocator), and how the time for 10,000
// entities grows against a tenth of them.
#include "corvane/cache/validation_cache.hpp"
#include "corvane/entities/showcase_app_entity.hpp"
#include "corvane/observation/observation_tracking.hpp"
#include "corvane/tracking/unified_change_tracker.hpp"

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

// Live heap bytes: every allocation records its size in a header in front of the block.
std::atomic<std::int64_t> liveBytes{0};
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* countedAllocate(std::size_t size) {
  auto* block = static_cast<unsigned char*>(std::malloc(size + kHeader));
  if (block == nullptr) throw std::bad_alloc();
  *reinterpret_cast<std::size_t*>(block) = size;
  liveBytes.fetch_add(static_cast<std::int64_t>(size), std::memory_order_relaxed);
  return block + kHeader;
}

void countedFree(void* pointer) noexcept {
  if (pointer == nullptr) return;
  auto* block = static_cast<unsigned char*>(pointer) - kHeader;
  liveBytes.fetch_sub(static_cast<std::int64_t>(*reinterpret_cast<std::size_t*>(block)), std::memory_order_relaxed);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  return countedAllocate(size);
}
void* operator new[](std::size_t size) {
  return countedAllocate(size);
}
void operator delete(void* pointer) noexcept {
  countedFree(pointer);
}
void operator delete[](void* pointer) noexcept {
  countedFree(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
  countedFree(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept {
  countedFree(pointer);
}

namespace {

using corvane::ValidationResult;

// An observable with one property, read and written the way library classes do.
class Box : public corvane::Observable {
 public:
  void read() const { observationRegistrar().access("value"); }
  void write() {
    observationRegistrar().withMutation("value", [] {});
  }
};

// The smallest entity a host could register: the tracker's own cost shows.
class BareEntity final : public corvane::TrackableEntity {
 public:
  explicit BareEntity(std::string id) : id_(std::move(id)) {}
  std::string entityId() const override { return id_; }
  std::string entityName() const override { return id_; }
  bool hasUnsavedChanges() const override { return false; }
  std::string changeDescription() const override { return {}; }
  ValidationResult validationResult() const override { return ValidationResult::valid(); }

 private:
  std::string id_;
};

std::vector<std::shared_ptr<BareEntity>> bareEntities(std::int64_t count) {
  std::vector<std::shared_ptr<BareEntity>> entities;
  for (std::int64_t i = 0; i < count; ++i)
    entities.push_back(std::make_shared<BareEntity>("entity-" + std::to_string(i)));
  return entities;
}

// Heap bytes the tracker holds per registration (entities allocated beforehand).
void TrackerBytesPerEntity(benchmark::State& state) {
  const auto entities = bareEntities(10000);
  std::int64_t perEntity = 0;
  for (auto _ : state) {
    const std::int64_t before = liveBytes.load();
    corvane::UnifiedChangeTracker tracker({10000, false});
    for (const auto& entity : entities) tracker.register_(entity);
    perEntity = (liveBytes.load() - before) / 10000;
  }
  state.counters["bytes per entity"] = static_cast<double>(perEntity);
}
BENCHMARK(TrackerBytesPerEntity)->Unit(benchmark::kMillisecond);

// Heap bytes of one showcase entity (five tracked fields with their rules).
void ShowcaseEntityBytes(benchmark::State& state) {
  std::int64_t bytes = 0;
  for (auto _ : state) {
    const std::int64_t before = liveBytes.load();
    auto entity = std::make_shared<corvane::ShowcaseAppEntity>();
    bytes = liveBytes.load() - before;
    benchmark::DoNotOptimize(entity);
  }
  state.counters["bytes per entity"] = static_cast<double>(bytes);
}
BENCHMARK(ShowcaseEntityBytes);

// Heap bytes per cache entry with keys like "entity:12345:name" and a plain verdict.
void CacheBytesPerEntry(benchmark::State& state) {
  const std::int64_t count = state.range(0);
  std::int64_t perEntry = 0;
  for (auto _ : state) {
    auto cache = corvane::ValidationCache::create({count, 60.0, true});
    const std::int64_t before = liveBytes.load();
    for (std::int64_t i = 0; i < count; ++i) {
      cache->getOrCompute("entity:" + std::to_string(i) + ":name", "hash", [] { return ValidationResult::valid(); });
    }
    perEntry = (liveBytes.load() - before) / count;
  }
  state.counters["bytes per entry"] = static_cast<double>(perEntry);
  state.counters["estimate per entry"] = static_cast<double>(corvane::ValidationCache::kBytesPerEntry);
}
BENCHMARK(CacheBytesPerEntry)->Arg(100000)->Unit(benchmark::kMillisecond);

// Heap bytes of a million observation-tracking scopes on keys that are never written: while
// they wait on a live object, after the object they also read is destroyed, and after they
// all fired through another key (nothing may stay behind on the key that never changes).
void TrackingScopeBytes(benchmark::State& state) {
  constexpr std::int64_t kScopes = 1000000;
  std::int64_t waiting = 0;
  std::int64_t besideDestroyed = 0;
  std::int64_t afterFiring = 0;
  for (auto _ : state) {
    Box changing;
    Box unchanging;
    std::int64_t before = liveBytes.load();
    {
      Box box;
      for (std::int64_t i = 0; i < kScopes; ++i) corvane::withObservationTracking([&] { box.read(); }, [] {});
      waiting = (liveBytes.load() - before) / kScopes;
    }
    before = liveBytes.load();
    for (std::int64_t i = 0; i < kScopes; ++i) {
      Box destroyed;
      corvane::withObservationTracking(
          [&] {
            destroyed.read();
            unchanging.read();
          },
          [] {});
    }
    besideDestroyed = (liveBytes.load() - before) / kScopes;
    unchanging.write();
    before = liveBytes.load();
    for (std::int64_t i = 0; i < kScopes; ++i) {
      corvane::withObservationTracking(
          [&] {
            changing.read();
            unchanging.read();
          },
          [] {});
    }
    changing.write();
    afterFiring = liveBytes.load() - before;
  }
  state.counters["bytes per waiting scope"] = static_cast<double>(waiting);
  state.counters["bytes per scope beside a destroyed object"] = static_cast<double>(besideDestroyed);
  state.counters["bytes left by a million fired scopes"] = static_cast<double>(afterFiring);
}
BENCHMARK(TrackingScopeBytes)->Iterations(1)->Unit(benchmark::kMillisecond);

// Register, query and unregister N entities: ten times N should take about ten times as long.
void TrackerRegisterQueryUnregister(benchmark::State& state) {
  const auto entities = bareEntities(state.range(0));
  for (auto _ : state) {
    corvane::UnifiedChangeTracker tracker({state.range(0), false});
    for (const auto& entity : entities) tracker.register_(entity);
    benchmark::DoNotOptimize(tracker.entitiesWithChanges());
    benchmark::DoNotOptimize(tracker.hasUnsavedChanges());
    for (const auto& entity : entities) tracker.unregister(entity->entityId());
  }
}
BENCHMARK(TrackerRegisterQueryUnregister)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

}  // namespace

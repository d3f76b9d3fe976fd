#include "corvane/cache/validation_cache.hpp"

#include "corvane/support/main_queue.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"

#include <fmt/format.h>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/system_executor.hpp>

#include <mutex>
#include <vector>

namespace corvane {

// Re-arms itself every interval and holds the cache weakly: a released cache is no longer
// cleaned, and destroying the cache (and with it this timer) cancels the pending wait. It
// runs on Asio's system executor rather than the host's loop, so that it never outlives
// the executor it waits on.
class ValidationCache::CleanupTimer {
 public:
  CleanupTimer() : timer_(boost::asio::system_executor()) {}
  ~CleanupTimer() { timer_.cancel(); }

  void schedule(std::weak_ptr<ValidationCache> cache) {
    timer_.expires_after(kCleanupInterval);
    timer_.async_wait([cache = std::move(cache)](const boost::system::error_code& error) {
      if (error) return;
      if (auto self = cache.lock()) {
        self->cleanUp();
        self->cleanupTimer_->schedule(cache);
      }
    });
  }

 private:
  boost::asio::steady_timer timer_;
};

ValidationCache::Statistics::Statistics(std::int64_t totalRequests_, std::int64_t cacheHits_, std::int64_t cacheMisses_,
                                        std::int64_t cacheSize_, std::int64_t memoryUsage_)
    : totalRequests(totalRequests_),
      cacheHits(cacheHits_),
      cacheMisses(cacheMisses_),
      hitRate(totalRequests_ < 1 ? 0.0 : static_cast<double>(cacheHits_) / static_cast<double>(totalRequests_)),
      cacheSize(cacheSize_),
      memoryUsage(memoryUsage_) {}

ValidationCache& ValidationCache::shared() {
  // Never destroyed: entities may use it from static destructors and pool threads.
  static const auto* owner = new std::shared_ptr<ValidationCache>(create(Configuration{1000, 60.0, true}));
  return **owner;
}

std::shared_ptr<ValidationCache> ValidationCache::create(Configuration configuration, Clock clock) {
  auto cache = std::make_shared<ValidationCache>(Passkey{}, configuration, std::move(clock));
  cache->cleanupTimer_ = std::make_unique<CleanupTimer>();
  cache->cleanupTimer_->schedule(cache);
  return cache;
}

ValidationCache::ValidationCache(Passkey, Configuration configuration, Clock clock)
    : configuration_(configuration),
      clock_(clock ? std::move(clock) : Clock([] { return std::chrono::system_clock::now(); })) {}

ValidationCache::~ValidationCache() = default;

ValidationResult ValidationCache::getOrCompute(std::string_view key, std::string_view dependencyHash,
                                               const std::function<ValidationResult()>& compute) {
  return lookup(key, dependencyHash, compute, true);
}

ValidationResult ValidationCache::validateByAge(std::string_view key,
                                                const std::function<ValidationResult()>& compute) {
  return lookup(key, std::nullopt, compute, false);
}

ValidationResult ValidationCache::lookup(std::string_view key, std::optional<std::string_view> dependencyHash,
                                         const std::function<ValidationResult()>& compute, bool evict) {
  const bool counting = configuration_.enableStatistics;
  std::optional<ValidationResult> result;
  bool hit = false;
  std::size_t entries = 0;
  {
    std::unique_lock lock(mutex_);
    if (counting) totalRequests_.store(checkedAdd<std::int64_t>(totalRequests_.load(), 1));
    const auto now = clock_();
    auto found = cache_.find(key);
    if (found != cache_.end() && isFresh(found->second.entry, now) &&
        (!dependencyHash || found->second.entry.dependencyHash == *dependencyHash)) {
      auto& entry = found->second.entry;
      entry.accessCount = checkedAdd<std::int64_t>(entry.accessCount, 1);
      entry.lastAccessSequence = nextSequence();
      recency_.splice(recency_.end(), recency_, found->second.recency);
      if (counting) cacheHits_.store(checkedAdd<std::int64_t>(cacheHits_.load(), 1));
      result = entry.result;
      hit = true;
    } else {
      result = compute();
      CacheEntry entry{*result, now, std::string(dependencyHash.value_or("")), 1, nextSequence()};
      if (found != cache_.end()) {
        found->second.entry = std::move(entry);
        recency_.splice(recency_.end(), recency_, found->second.recency);
      } else {
        auto inserted = cache_.emplace(std::string(key), Node{std::move(entry), {}}).first;
        inserted->second.recency = recency_.insert(recency_.end(), &inserted->first);
      }
      if (evict) evictExcess();
      if (counting) cacheMisses_.store(checkedAdd<std::int64_t>(cacheMisses_.load(), 1));
    }
    entries = cache_.size();
  }
  if (counting) announce({"totalRequests", hit ? "cacheHits" : "cacheMisses"});
  if (!hit) publishSize(entries);
  return std::move(*result);
}

bool ValidationCache::isFresh(const CacheEntry& entry, std::chrono::system_clock::time_point now) const {
  const std::chrono::duration<double> age = now - entry.timestamp;
  return age.count() <= configuration_.maxAge;
}

std::int64_t ValidationCache::nextSequence() {
  accessSequence_ = checkedAdd<std::int64_t>(accessSequence_, 1);
  return accessSequence_;
}

void ValidationCache::erase(Map::iterator position) {
  recency_.erase(position->second.recency);
  cache_.erase(position);
}

void ValidationCache::evictExcess() {
  // The recency list is ordered by last access, so its front holds the smallest sequences.
  const auto maxSize = configuration_.maxSize < 0 ? 0 : static_cast<std::size_t>(configuration_.maxSize);
  while (cache_.size() > maxSize) erase(cache_.find(*recency_.front()));
}

void ValidationCache::invalidate(std::string_view key) {
  std::size_t entries = 0;
  {
    std::unique_lock lock(mutex_);
    if (auto found = cache_.find(key); found != cache_.end()) erase(found);
    entries = cache_.size();
  }
  publishSize(entries);
}

void ValidationCache::invalidatePrefix(std::string_view prefix) {
  std::size_t entries = 0;
  {
    std::unique_lock lock(mutex_);
    for (auto position = cache_.begin(); position != cache_.end();) {
      auto next = std::next(position);
      if (std::string_view(position->first).starts_with(prefix)) erase(position);
      position = next;
    }
    entries = cache_.size();
  }
  publishSize(entries);
}

void ValidationCache::clear() {
  {
    std::unique_lock lock(mutex_);
    cache_.clear();
    recency_.clear();
  }
  if (configuration_.enableStatistics) {
    postToMain([weak = weak_from_this()] {
      auto self = weak.lock();
      if (!self) return;
      self->totalRequests_.store(0);
      self->cacheHits_.store(0);
      self->cacheMisses_.store(0);
      self->announce({"totalRequests", "cacheHits", "cacheMisses"});
    });
  }
  publishSize(0);
}

ValidationCache::Statistics ValidationCache::getStatistics() const {
  std::shared_lock lock(mutex_);
  const auto entries = static_cast<std::int64_t>(cache_.size());
  return Statistics(totalRequests_.load(), cacheHits_.load(), cacheMisses_.load(), entries,
                    checkedMultiply(entries, kBytesPerEntry));
}

std::optional<ValidationCache::CacheEntry> ValidationCache::entry(std::string_view key) const {
  std::shared_lock lock(mutex_);
  auto found = cache_.find(key);
  if (found == cache_.end()) return std::nullopt;
  return found->second.entry;
}

void ValidationCache::cleanUp() {
  {
    std::unique_lock lock(mutex_);
    const auto now = clock_();
    for (auto position = cache_.begin(); position != cache_.end();) {
      auto next = std::next(position);
      if (!isFresh(position->second.entry, now)) erase(position);
      position = next;
    }
  }
  if (!configuration_.enableStatistics) return;
  const auto statistics = getStatistics();
  if (statistics.totalRequests < 1) return;
  printLine(fmt::format("🔧 ValidationCache Stats: {}/{} hits ({:.1f}%), {} entries, {} bytes", statistics.cacheHits,
                        statistics.totalRequests, statistics.hitRate * 100, statistics.cacheSize,
                        statistics.memoryUsage));
}

void ValidationCache::announce(std::initializer_list<std::string_view> keys) {
  auto& registrar = observationRegistrar();
  for (auto key : keys) {
    registrar.willSet(key);
    registrar.didSet(key);
  }
}

void ValidationCache::publishSize(std::size_t entries) {
  const auto count = static_cast<std::int64_t>(entries);
  const auto memory = checkedMultiply(count, kBytesPerEntry);
  postToMain([weak = weak_from_this(), count, memory] {
    auto self = weak.lock();
    if (!self) return;
    self->observationRegistrar().withMutation("cacheSize", [&] { self->cacheSize_.store(count); });
    self->observationRegistrar().withMutation("memoryUsage", [&] { self->memoryUsage_.store(memory); });
  });
}

std::int64_t ValidationCache::totalRequests() const {
  observationRegistrar().access("totalRequests");
  return totalRequests_.load();
}

std::int64_t ValidationCache::cacheHits() const {
  observationRegistrar().access("cacheHits");
  return cacheHits_.load();
}

std::int64_t ValidationCache::cacheMisses() const {
  observationRegistrar().access("cacheMisses");
  return cacheMisses_.load();
}

std::int64_t ValidationCache::cacheSize() const {
  observationRegistrar().access("cacheSize");
  return cacheSize_.load();
}

std::int64_t ValidationCache::memoryUsage() const {
  observationRegistrar().access("memoryUsage");
  return memoryUsage_.load();
}

double ValidationCache::hitRate() const {
  const auto requests = totalRequests();
  const auto hits = cacheHits();
  return requests < 1 ? 0.0 : static_cast<double>(hits) / static_cast<double>(requests);
}

}  // namespace corvane

#include "corvane/cache/validation_cache.hpp"

#include "corvane/support/main_queue.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"

#include <fmt/format.h>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/system_executor.hpp>

#include <limits>
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

namespace {

// The counters, as bits of one announcement.
constexpr unsigned kRequests = 1;
constexpr unsigned kHits = 2;
constexpr unsigned kMisses = 4;

// The computations running on this thread, innermost first. A computation that calls back
// into its own cache runs under the lock that its lookup already holds.
struct RunningComputation {
  RunningComputation(const ValidationCache* cache_, std::string_view key_)
      : cache(cache_), key(key_), enclosing(innermostComputation) {
    innermostComputation = this;
  }
  ~RunningComputation() { innermostComputation = enclosing; }
  RunningComputation(const RunningComputation&) = delete;
  RunningComputation& operator=(const RunningComputation&) = delete;

  static thread_local RunningComputation* innermostComputation;
  const ValidationCache* cache;
  std::string_view key;
  RunningComputation* enclosing;
};

thread_local RunningComputation* RunningComputation::innermostComputation = nullptr;

}  // namespace

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

std::shared_ptr<ValidationCache> ValidationCache::create(Configuration configuration, Clocks clocks) {
  auto cache = std::make_shared<ValidationCache>(Passkey{}, configuration, std::move(clocks));
  cache->cleanupTimer_ = std::make_unique<CleanupTimer>();
  cache->cleanupTimer_->schedule(cache);
  return cache;
}

ValidationCache::ValidationCache(Passkey, Configuration configuration, Clocks clocks)
    : configuration_(configuration), clocks_(std::move(clocks)) {}

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
  unsigned changed = 0;
  std::size_t entries = 0;
  {
    auto lock = lockExclusive();
    for (const auto* running = RunningComputation::innermostComputation; running; running = running->enclosing) {
      CORVANE_PRECONDITION(
          running->cache != this || running->key != key,
          "ValidationCache: the computation of '" + std::string(key) + "' asked the same cache for its own key");
    }
    if (counting) changed |= count(totalRequests_, kRequests);
    const auto steady = steadyNow();
    auto found = cache_.find(key);
    if (found != cache_.end() && isFresh(found->second, steady) &&
        (!dependencyHash || found->second.entry.dependencyHash == *dependencyHash)) {
      auto& entry = found->second.entry;
      entry.accessCount = checkedAdd<std::int64_t>(entry.accessCount, 1);
      entry.lastAccessSequence = nextSequence();
      recency_.splice(recency_.end(), recency_, found->second.recency);
      if (counting) changed |= count(cacheHits_, kHits);
      result = entry.result;
      hit = true;
    } else {
      const auto wall = wallNow();
      try {
        RunningComputation running(this, key);
        result = compute();
      } catch (...) {
        if (counting) announceCounters(changed | count(cacheMisses_, kMisses));
        throw;
      }
      // The computation may have used the cache itself and moved or removed this entry.
      found = cache_.find(key);
      CacheEntry entry{*result, wall, std::string(dependencyHash.value_or("")), 1, nextSequence()};
      if (found != cache_.end()) {
        found->second.entry = std::move(entry);
        found->second.storedAt = steady;
        recency_.splice(recency_.end(), recency_, found->second.recency);
      } else {
        auto inserted = cache_.emplace(std::string(key), Node{std::move(entry), steady, {}}).first;
        inserted->second.recency = recency_.insert(recency_.end(), &inserted->first);
      }
      if (evict) evictExcess();
      if (counting) changed |= count(cacheMisses_, kMisses);
    }
    entries = cache_.size();
  }
  if (changed != 0) announceCounters(changed);
  if (!hit) publishSize(entries);
  return std::move(*result);
}

bool ValidationCache::isFresh(const Node& node, std::chrono::steady_clock::time_point now) const {
  const std::chrono::duration<double> age = now - node.storedAt;
  return age.count() <= configuration_.maxAge;
}

std::chrono::system_clock::time_point ValidationCache::wallNow() const {
  return clocks_.wall ? clocks_.wall() : std::chrono::system_clock::now();
}

std::chrono::steady_clock::time_point ValidationCache::steadyNow() const {
  return clocks_.steady ? clocks_.steady() : std::chrono::steady_clock::now();
}

bool ValidationCache::computingOnThisThread() const noexcept {
  for (const auto* running = RunningComputation::innermostComputation; running; running = running->enclosing) {
    if (running->cache == this) return true;
  }
  return false;
}

// Inside one of its computations this thread already holds the cache exclusively; taking
// the lock again would deadlock, and the computation's own lookup waits for it anyway.
std::unique_lock<std::shared_mutex> ValidationCache::lockExclusive() const {
  if (computingOnThisThread()) return {};
  return std::unique_lock(mutex_);
}

std::shared_lock<std::shared_mutex> ValidationCache::lockShared() const {
  if (computingOnThisThread()) return {};
  return std::shared_lock(mutex_);
}

unsigned ValidationCache::count(std::atomic<std::int64_t>& counter, unsigned announcement) {
  if (counter.fetch_add(1) == std::numeric_limits<std::int64_t>::max()) {
    detail::preconditionFailure("integer overflow in addition");
  }
  return announcement;
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
    auto lock = lockExclusive();
    if (auto found = cache_.find(key); found != cache_.end()) erase(found);
    entries = cache_.size();
  }
  publishSize(entries);
}

void ValidationCache::invalidatePrefix(std::string_view prefix) {
  std::size_t entries = 0;
  {
    auto lock = lockExclusive();
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
    auto lock = lockExclusive();
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
  auto lock = lockShared();
  const auto entries = static_cast<std::int64_t>(cache_.size());
  return Statistics(totalRequests_.load(), cacheHits_.load(), cacheMisses_.load(), entries,
                    checkedMultiply(entries, kBytesPerEntry));
}

std::optional<ValidationCache::CacheEntry> ValidationCache::entry(std::string_view key) const {
  auto lock = lockShared();
  auto found = cache_.find(key);
  if (found == cache_.end()) return std::nullopt;
  return found->second.entry;
}

void ValidationCache::cleanUp() {
  {
    auto lock = lockExclusive();
    const auto now = steadyNow();
    for (auto position = cache_.begin(); position != cache_.end();) {
      auto next = std::next(position);
      if (!isFresh(position->second, now)) erase(position);
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

void ValidationCache::announceCounters(unsigned counters) {
  // At most one announcement is queued at a time; it announces whatever changed until it runs.
  if (unannouncedCounters_.fetch_or(counters) != 0) return;
  postToMain([weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    const unsigned changed = self->unannouncedCounters_.exchange(0);
    if (changed & kRequests) self->announce({"totalRequests"});
    if (changed & kHits) self->announce({"cacheHits"});
    if (changed & kMisses) self->announce({"cacheMisses"});
  });
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

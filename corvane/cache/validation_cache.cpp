#include "corvane/cache/validation_cache.hpp"

#include "corvane/support/main_queue.hpp"
#include "corvane/support/precondition.hpp"
#include "corvane/support/print_line.hpp"

#include <fmt/format.h>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/system_executor.hpp>

#include <algorithm>
#include <ctime>
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

// Children per node of the recency heap: half the depth of a binary heap, and a node's
// children share a cache line.
constexpr std::size_t kRecencyArity = 4;

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

// The monotonic clock as of the last scheduler tick: a few nanoseconds where the precise
// reading costs several times that, and every hit reads it. Same epoch as `steady_clock`.
std::chrono::steady_clock::time_point coarseSteadyNow() noexcept {
#ifdef CLOCK_MONOTONIC_COARSE
  timespec now{};
  if (clock_gettime(CLOCK_MONOTONIC_COARSE, &now) == 0) {
    return std::chrono::steady_clock::time_point(std::chrono::duration_cast<std::chrono::steady_clock::duration>(
        std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec)));
  }
#endif
  return std::chrono::steady_clock::now();
}

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
    : configuration_(configuration),
      clocks_(std::move(clocks)),
      realWallClock_(!clocks_.wall),
      realSteadyClock_(!clocks_.steady) {}

ValidationCache::~ValidationCache() = default;

// Kept inline in the two entry points: a hit is short enough for a call to show.
__attribute__((always_inline)) inline ValidationResult ValidationCache::lookup(
    std::string_view key, const std::string_view* dependencyHash, const std::function<ValidationResult()>& compute,
    bool evict) {
  // Inside one of this cache's computations the lock is already held (see `lock`); while
  // no computation runs anywhere, no lookup is nested.
  std::optional<std::lock_guard<detail::AdaptiveMutex>> held;
  if (runningComputations_.load(std::memory_order_relaxed) == 0 || !computingOnThisThread(key)) held.emplace(mutex_);
  auto found = cache_.find(key);
  if (found != cache_.end() && servable(found->second, dependencyHash)) return recordHit(found->second);

  const auto steady = steadyNow();
  const auto wall = wallNow();
  const auto mutationsBefore = mutations_;
  ValidationResult result = computeCounted(key, compute);
  // The computation may have used the cache itself and replaced or removed this entry.
  if (mutations_ != mutationsBefore) found = cache_.find(key);
  ++mutations_;
  const auto sequence = nextSequence();
  if (found != cache_.end()) {
    // Its slot keeps the smaller sequence, which eviction tells apart from the entry's own.
    // Copied first, so that running out of memory leaves the entry as it was.
    ValidationResult stored = result;
    std::string hash(dependencyHash ? *dependencyHash : std::string_view());
    Node& node = found->second;
    node.result = std::move(stored);
    node.dependencyHash = std::move(hash);
    node.timestamp = wall;
    node.storedAt = steady;
    node.accessCount = 1;
    node.lastAccess = sequence;
  } else {
    // Room for the slot first, so that nothing can fail between the map and the heap.
    reserveSlot();
    auto& inserted = *cache_
                          .try_emplace(std::string(key), result, wall, steady,
                                       dependencyHash ? *dependencyHash : std::string_view(), sequence)
                          .first;
    recency_.push_back({sequence, &inserted});
    siftUp(recency_.size() - 1);
  }
  if (evict) evictExcess();
  entryCount_.store(static_cast<std::int64_t>(cache_.size()));
  if (configuration_.enableStatistics) {
    count(cacheMisses_);
    if (observationRegistrar().mayBeObserved()) announceCounters(kRequests | kMisses);
  }
  publishSize();
  return result;
}

ValidationResult ValidationCache::getOrCompute(std::string_view key, std::string_view dependencyHash,
                                               const std::function<ValidationResult()>& compute) {
  return lookup(key, &dependencyHash, compute, true);
}

ValidationResult ValidationCache::validateByAge(std::string_view key,
                                                const std::function<ValidationResult()>& compute) {
  return lookup(key, nullptr, compute, false);
}

ValidationResult ValidationCache::computeCounted(std::string_view key,
                                                 const std::function<ValidationResult()>& compute) {
  const bool counting = configuration_.enableStatistics;
  if (counting) count(computedRequests_);
  struct Running {
    explicit Running(std::atomic<int>& count_) : count(count_) { count.fetch_add(1, std::memory_order_relaxed); }
    ~Running() { count.fetch_sub(1, std::memory_order_relaxed); }
    std::atomic<int>& count;
  };
  try {
    Running counted(runningComputations_);
    RunningComputation running(this, key);
    return compute();
  } catch (...) {
    if (counting) {
      count(cacheMisses_);
      if (observationRegistrar().mayBeObserved()) announceCounters(kRequests | kMisses);
    }
    throw;
  }
}

inline bool ValidationCache::servable(const Node& node, const std::string_view* dependencyHash) const {
  return isFresh(node, steadyNow()) && (!dependencyHash || node.dependencyHash == *dependencyHash);
}

// Under the lock, so the bookkeeping is plain reads and writes.
__attribute__((always_inline)) inline const ValidationResult& ValidationCache::recordHit(Node& node) {
  node.accessCount = checkedAdd<std::int64_t>(node.accessCount, 1);
  node.lastAccess = nextSequence();
  if (configuration_.enableStatistics) {
    count(hits_);
    // The hit was counted first: an observer that arrives now reads the new count.
    if (observationRegistrar().mayBeObserved()) announceCounters(kRequests | kHits);
  }
  return node.result;
}

inline bool ValidationCache::isFresh(const Node& node, std::chrono::steady_clock::time_point now) const {
  const std::chrono::duration<double> age = now - node.storedAt;
  return age.count() <= configuration_.maxAge;
}

std::chrono::system_clock::time_point ValidationCache::wallNow() const {
  return realWallClock_ ? std::chrono::system_clock::now() : clocks_.wall();
}

inline std::chrono::steady_clock::time_point ValidationCache::steadyNow() const {
  return realSteadyClock_ ? coarseSteadyNow() : clocks_.steady();
}

bool ValidationCache::computingOnThisThread() const noexcept {
  if (runningComputations_.load(std::memory_order_relaxed) == 0) return false;
  for (const auto* running = RunningComputation::innermostComputation; running; running = running->enclosing) {
    if (running->cache == this) return true;
  }
  return false;
}

// Also checks that no computation on this thread asks for its own key.
bool ValidationCache::computingOnThisThread(std::string_view key) const {
  bool nested = false;
  for (const auto* running = RunningComputation::innermostComputation; running; running = running->enclosing) {
    if (running->cache != this) continue;
    CORVANE_PRECONDITION(running->key != key, "ValidationCache: the computation of '" + std::string(key) +
                                                  "' asked the same cache for its own key");
    nested = true;
  }
  return nested;
}

// Inside one of its computations this thread already holds the cache; taking the lock
// again would deadlock, and the computation's own lookup waits for it anyway.
std::unique_lock<detail::AdaptiveMutex> ValidationCache::lock() const {
  if (computingOnThisThread()) return {};
  return std::unique_lock(mutex_);
}

inline void ValidationCache::count(std::int64_t& counter) { counter = checkedAdd<std::int64_t>(counter, 1); }

// The access sequence counts every hit and store, under the lock.
std::int64_t ValidationCache::nextSequence() {
  accessSequence_ = checkedAdd<std::int64_t>(accessSequence_, 1);
  return accessSequence_;
}

std::size_t ValidationCache::bound() const {
  return configuration_.maxSize < 0 ? 0 : static_cast<std::size_t>(configuration_.maxSize);
}

// Doubles, except that a cache that evicts needs one slot beyond its bound at most.
void ValidationCache::reserveSlot() {
  const auto size = recency_.size();
  if (size < recency_.capacity()) return;
  auto wanted = std::max<std::size_t>(16, 2 * size);
  if (size <= bound()) wanted = std::min(wanted, bound() + 1);
  recency_.reserve(wanted);
}

// The recency heap keeps each entry's position in its node, so that a removal finds its slot.
void ValidationCache::placeSlot(std::size_t index, RecencySlot slot) {
  slot.entry->second.recencyIndex = index;
  recency_[index] = slot;
}

void ValidationCache::siftUp(std::size_t index) {
  const RecencySlot moving = recency_[index];
  while (index > 0) {
    const std::size_t parent = (index - 1) / kRecencyArity;
    if (recency_[parent].sequence <= moving.sequence) break;
    placeSlot(index, recency_[parent]);
    index = parent;
  }
  placeSlot(index, moving);
}

void ValidationCache::siftDown(std::size_t index) {
  const RecencySlot moving = recency_[index];
  const std::size_t size = recency_.size();
  for (;;) {
    const std::size_t first = index * kRecencyArity + 1;
    if (first >= size) break;
    const std::size_t end = std::min(first + kRecencyArity, size);
    std::size_t smallest = first;
    for (std::size_t child = first + 1; child < end; ++child) {
      if (recency_[child].sequence < recency_[smallest].sequence) smallest = child;
    }
    if (recency_[smallest].sequence >= moving.sequence) break;
    placeSlot(index, recency_[smallest]);
    index = smallest;
  }
  placeSlot(index, moving);
}

void ValidationCache::removeSlot(std::size_t index) {
  const RecencySlot last = recency_.back();
  recency_.pop_back();
  if (index == recency_.size()) return;
  placeSlot(index, last);
  if (index > 0 && recency_[(index - 1) / kRecencyArity].sequence > last.sequence) {
    siftUp(index);
  } else {
    siftDown(index);
  }
}

void ValidationCache::erase(Map::iterator position) {
  ++mutations_;
  removeSlot(position->second.recencyIndex);
  cache_.erase(position);
}

// Every entry's own sequence is at least its slot's, so a top slot that matches its entry
// holds the smallest sequence of all: the least recently used entry. A top slot behind its
// entry moves to the entry's sequence, once per entry used since the last eviction at most.
void ValidationCache::evictExcess() {
  while (cache_.size() > bound()) {
    RecencySlot& top = recency_.front();
    const auto current = top.entry->second.lastAccess;
    if (current != top.sequence) {
      top.sequence = current;
      siftDown(0);
      continue;
    }
    erase(cache_.find(top.entry->first));
  }
}

void ValidationCache::invalidate(std::string_view key) {
  {
    auto held = lock();
    if (auto found = cache_.find(key); found != cache_.end()) erase(found);
    entryCount_.store(static_cast<std::int64_t>(cache_.size()));
  }
  publishSize();
}

void ValidationCache::invalidatePrefix(std::string_view prefix) {
  {
    auto held = lock();
    for (auto position = cache_.begin(); position != cache_.end();) {
      auto next = std::next(position);
      if (std::string_view(position->first).starts_with(prefix)) erase(position);
      position = next;
    }
    entryCount_.store(static_cast<std::int64_t>(cache_.size()));
  }
  publishSize();
}

void ValidationCache::clear() {
  {
    auto held = lock();
    ++mutations_;
    cache_.clear();
    recency_.clear();
    entryCount_.store(0);
  }
  if (configuration_.enableStatistics) {
    postToMain([weak = weak_from_this()] {
      auto self = weak.lock();
      if (!self) return;
      {
        auto held = self->lock();
        self->computedRequests_ = 0;
        self->hits_ = 0;
        self->cacheMisses_ = 0;
      }
      self->announce({"totalRequests", "cacheHits", "cacheMisses"});
    });
  }
  publishSize();
}

ValidationCache::Statistics ValidationCache::getStatistics() const {
  auto held = lock();
  const auto entries = static_cast<std::int64_t>(cache_.size());
  return Statistics(checkedAdd(hits_, computedRequests_), hits_, cacheMisses_, entries,
                    checkedMultiply(entries, kBytesPerEntry));
}

std::optional<ValidationCache::CacheEntry> ValidationCache::entry(std::string_view key) const {
  auto held = lock();
  auto found = cache_.find(key);
  if (found == cache_.end()) return std::nullopt;
  const Node& node = found->second;
  return CacheEntry{node.result, node.timestamp, node.dependencyHash, node.accessCount, node.lastAccess};
}

void ValidationCache::cleanUp() {
  {
    auto held = lock();
    const auto now = steadyNow();
    for (auto position = cache_.begin(); position != cache_.end();) {
      auto next = std::next(position);
      if (!isFresh(position->second, now)) erase(position);
      position = next;
    }
    entryCount_.store(static_cast<std::int64_t>(cache_.size()));
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

// At most one publication is queued at a time, and only while the published figure is not
// the cache's size; it publishes the size it finds when it runs. A change that saw the old
// figure, and so queued nothing, is caught by the publication's own check at its end.
void ValidationCache::publishSize() {
  if (entryCount_.load() == cacheSize_.load()) return;
  if (sizePublicationQueued_.exchange(true)) return;
  postToMain([weak = weak_from_this()] {
    auto self = weak.lock();
    if (!self) return;
    self->sizePublicationQueued_.store(false);
    const auto count = self->entryCount_.load();
    const auto memory = checkedMultiply(count, kBytesPerEntry);
    self->observationRegistrar().withMutation("cacheSize", [&] { self->cacheSize_.store(count); });
    self->observationRegistrar().withMutation("memoryUsage", [&] { self->memoryUsage_.store(memory); });
    self->publishSize();
  });
}

// The counters are read under the lock after the access is recorded: a lookup counts and
// asks whether anyone observes under the same lock, so a reader that starts observing
// either reads its count or is announced to.
std::int64_t ValidationCache::totalRequests() const {
  observationRegistrar().access("totalRequests");
  auto held = lock();
  return checkedAdd(hits_, computedRequests_);
}

std::int64_t ValidationCache::cacheHits() const {
  observationRegistrar().access("cacheHits");
  auto held = lock();
  return hits_;
}

std::int64_t ValidationCache::cacheMisses() const {
  observationRegistrar().access("cacheMisses");
  auto held = lock();
  return cacheMisses_;
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

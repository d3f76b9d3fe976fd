#pragma once

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/results/validation_result.hpp"
#include "corvane/support/adaptive_mutex.hpp"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane {

/// Memoises verdicts under string keys, so that a validation runs again only when its
/// inputs changed (another dependency hash) or its verdict grew older than `maxAge`.
/// The least recently used entries are evicted beyond `maxSize`, a clean-up removes expired
/// entries every 30 seconds, and hit and miss counts are kept for observers.
///
/// Every operation may be called from any thread and holds the cache's lock; a miss runs
/// `compute` while holding it. `compute` may call back into the same cache on the same
/// thread (the call is served under the lock already held), but not for the key being
/// computed, which is a fatal precondition failure, and it must not wait for another
/// thread that uses this cache. The published size and memory figures are updated later on the main executor
/// when the number of entries changed, by at most one pending publication, which carries
/// the number at the time it runs; `getStatistics()` reads the entries directly.
///
/// Observed properties: "totalRequests", "cacheHits", "cacheMisses", "cacheSize" and
/// "memoryUsage", all announced on the main executor. The counters themselves change at
/// once (the announcement follows while anything observes the cache; changes in a burst
/// are announced together); the size and memory figures change when announced.
class ValidationCache : public Observable, public std::enable_shared_from_this<ValidationCache> {
 public:
  /// Fixed at construction.
  struct Configuration {
    /// The number of entries beyond which lookups evict.
    std::int64_t maxSize = 1000;
    /// The age in seconds up to which an entry is fresh (an entry exactly this old still is).
    double maxAge = 60.0;
    /// Whether requests, hits and misses are counted.
    bool enableStatistics = true;

    friend bool operator==(const Configuration&, const Configuration&) = default;
  };

  /// One cached verdict.
  struct CacheEntry {
    ValidationResult result;
    /// When the entry was stored.
    std::chrono::system_clock::time_point timestamp;
    std::string dependencyHash;
    /// 1 when stored, one more on every hit.
    std::int64_t accessCount;
    /// The cache's access sequence at the last store or hit: smaller is less recently used.
    std::int64_t lastAccessSequence;

    friend bool operator==(const CacheEntry&, const CacheEntry&) = default;
  };

  /// A snapshot of the counters.
  struct Statistics {
    std::int64_t totalRequests;
    std::int64_t cacheHits;
    std::int64_t cacheMisses;
    /// `cacheHits / totalRequests`, or 0.0 before the first request.
    double hitRate;
    std::int64_t cacheSize;
    /// The estimated memory: 250 bytes per entry.
    std::int64_t memoryUsage;

    /// Derives `hitRate` from the counts.
    Statistics(std::int64_t totalRequests, std::int64_t cacheHits, std::int64_t cacheMisses, std::int64_t cacheSize,
               std::int64_t memoryUsage);

    friend bool operator==(const Statistics&, const Statistics&) = default;
  };

  /// What the cache reads the time from; tests pass clocks they move by hand, and an empty
  /// function stands for the real clock. Ages are measured on `steady`, so that correcting
  /// the wall clock neither expires young entries nor keeps old ones; `wall` only stamps
  /// entries (`CacheEntry::timestamp`). The real steady clock is read at the coarse
  /// resolution the system keeps cheaply (one scheduler tick, 1 to 10 ms on Linux), since
  /// every hit reads it: an age may be off by up to one tick.
  struct Clocks {
    std::function<std::chrono::system_clock::time_point()> wall;
    std::function<std::chrono::steady_clock::time_point()> steady;
  };

  /// The estimated size of one entry in bytes.
  static constexpr std::int64_t kBytesPerEntry = 250;
  /// How often the clean-up runs.
  static constexpr std::chrono::seconds kCleanupInterval{30};

  /// The process-wide cache (1000 entries, 60 seconds, statistics on), created on first use
  /// and never destroyed.
  static ValidationCache& shared();

  /// A new cache whose clean-up timer runs every 30 seconds for as long as the cache lives
  /// (the timer does not keep it alive), reading the real clocks unless told otherwise.
  static std::shared_ptr<ValidationCache> create(Configuration configuration, Clocks clocks = {});

  ~ValidationCache();

  /// The configuration given at construction.
  const Configuration& configuration() const noexcept { return configuration_; }

  /// The verdict stored under `key` if it is fresh and was computed for `dependencyHash`
  /// (a hit); otherwise calls `compute`, stores its verdict and evicts the least recently
  /// used entries beyond `maxSize` (a miss). When `compute` throws, the lookup counts as a
  /// miss, nothing is stored and the exception reaches the caller.
  ValidationResult getOrCompute(std::string_view key, std::string_view dependencyHash,
                                const std::function<ValidationResult()>& compute);

  /// Like `getOrCompute`, but freshness depends on age alone and storing never evicts:
  /// entries added here may take the cache beyond `maxSize` until a later `getOrCompute`.
  /// On a miss, `validator(value)` is called. Choose keys that identify the value.
  template <class T, class Validator>
  ValidationResult validate(std::string_view key, const T& value, Validator&& validator) {
    return validateByAge(key, [&] { return validator(value); });
  }

  /// Removes the entry under `key`, if any.
  void invalidate(std::string_view key);
  /// Removes every entry whose key begins with `prefix`.
  void invalidatePrefix(std::string_view prefix);
  /// Removes every entry. With statistics on, the request, hit and miss counters are reset
  /// later, on the main executor.
  void clear();

  /// The counters and the current number of entries.
  Statistics getStatistics() const;

  /// A copy of the entry under `key`, without counting a request or refreshing it. It holds
  /// the cache exclusively, so that its count and sequence come from the same hit.
  std::optional<CacheEntry> entry(std::string_view key) const;

  /// Removes every entry older than `maxAge` and, with statistics on and at least one
  /// request counted, prints the statistics line. The clean-up timer runs this.
  void cleanUp();

  /// Observed counters.
  std::int64_t totalRequests() const;
  std::int64_t cacheHits() const;
  std::int64_t cacheMisses() const;
  /// The number of entries, as last published on the main executor.
  std::int64_t cacheSize() const;
  /// The estimated memory, as last published on the main executor.
  std::int64_t memoryUsage() const;
  /// `cacheHits / totalRequests`, or 0.0 before the first request.
  double hitRate() const;

 private:
  struct Passkey {};

 public:
  /// Use `create`: the clean-up timer needs the cache to be shared.
  ValidationCache(Passkey, Configuration configuration, Clocks clocks);

 private:
  class CleanupTimer;
  // `storedAt` is the steady time of the last store: ages are measured from it.
  struct Node {
    Node(const ValidationResult& result_, std::chrono::system_clock::time_point timestamp_,
         std::chrono::steady_clock::time_point storedAt_, std::string_view dependencyHash_, std::int64_t sequence)
        : result(result_),
          timestamp(timestamp_),
          storedAt(storedAt_),
          dependencyHash(dependencyHash_),
          lastAccess(sequence) {}

    ValidationResult result;
    std::chrono::system_clock::time_point timestamp;
    std::chrono::steady_clock::time_point storedAt;
    std::string dependencyHash;
    std::int64_t accessCount = 1;
    // The access sequence of the last store or hit.
    std::int64_t lastAccess;
    // Where this entry's slot is in `recency_`.
    std::size_t recencyIndex = 0;
  };

  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const noexcept { return std::hash<std::string_view>{}(key); }
  };
  using Map = std::unordered_map<std::string, Node, KeyHash, std::equal_to<>>;

  // One entry in the recency heap. `sequence` is the entry's access sequence when the slot
  // was last placed; hits since then only raised the entry's own, so it is never larger.
  struct RecencySlot {
    std::int64_t sequence;
    Map::value_type* entry;
  };

  ValidationResult validateByAge(std::string_view key, const std::function<ValidationResult()>& compute);
  ValidationResult lookup(std::string_view key, const std::string_view* dependencyHash,
                          const std::function<ValidationResult()>& compute, bool evict);
  ValidationResult computeCounted(std::string_view key, const std::function<ValidationResult()>& compute);
  bool servable(const Node& node, const std::string_view* dependencyHash) const;
  const ValidationResult& recordHit(Node& node);

  bool isFresh(const Node& node, std::chrono::steady_clock::time_point now) const;
  std::chrono::system_clock::time_point wallNow() const;
  std::chrono::steady_clock::time_point steadyNow() const;
  bool computingOnThisThread() const noexcept;
  std::unique_lock<detail::AdaptiveMutex> lock() const;
  static void count(std::int64_t& counter);
  bool computingOnThisThread(std::string_view key) const;
  void erase(Map::iterator position);
  void evictExcess();
  std::int64_t nextSequence();
  std::size_t bound() const;
  void reserveSlot();
  void placeSlot(std::size_t index, RecencySlot slot);
  void siftUp(std::size_t index);
  void siftDown(std::size_t index);
  void removeSlot(std::size_t index);
  void announce(std::initializer_list<std::string_view> keys);
  void announceCounters(unsigned counters);
  void publishSize();

  const Configuration configuration_;
  const Clocks clocks_;
  // Decided once: whether the real clocks are read directly rather than through `clocks_`.
  const bool realWallClock_;
  const bool realSteadyClock_;

  // One lock for everything: every hit writes (the access sequence, the entry's count), so
  // a shared lock would save nothing and cost two atomic updates per hit. Threads that hit
  // at once wait for a few dozen nanoseconds, which spinning bridges better than sleeping.
  mutable detail::AdaptiveMutex mutex_;
  Map cache_;
  // A min-heap of one slot per entry, by slot sequence, four children a node. Hits leave it
  // alone; eviction re-places a top slot whose entry was used since, until the top entry is
  // truly the least recently used one.
  std::vector<RecencySlot> recency_;
  // Stores and removals so far, so that a miss knows whether its computation changed the
  // entries.
  std::uint64_t mutations_ = 0;
  // Hits and stores so far; never reset.
  std::int64_t accessSequence_ = 0;

  // Computations of this cache running on any thread: while there are none, no lookup is
  // nested, and the thread's chain of computations need not be walked.
  std::atomic<int> runningComputations_{0};

  // The counters, under the lock (counted only with statistics enabled). The requests that
  // did not hit at once; `totalRequests` adds the hits to them.
  std::int64_t hits_ = 0;
  std::int64_t computedRequests_ = 0;
  std::int64_t cacheMisses_ = 0;
  std::atomic<std::int64_t> cacheSize_{0};
  std::atomic<std::int64_t> memoryUsage_{0};
  // Counters changed since the last announcement was queued (bits of kRequests, kHits, kMisses).
  std::atomic<unsigned> unannouncedCounters_{0};
  // The number of entries for the next size publication, and whether one is queued.
  std::atomic<std::int64_t> entryCount_{0};
  std::atomic<bool> sizePublicationQueued_{false};

  std::unique_ptr<CleanupTimer> cleanupTimer_;
};

}  // namespace corvane

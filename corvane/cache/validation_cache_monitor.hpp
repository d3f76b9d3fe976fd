#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace corvane {

class ValidationCache;

/// Checks a validation cache against two performance targets (a hit rate above 0.9 and an
/// estimated memory below 10 MiB) and renders a plain-text performance report. Holds no
/// state of its own.
class ValidationCacheMonitor {
 public:
  /// The hit rate that must be exceeded (a fraction).
  static constexpr double kMinimumHitRate = 0.9;
  /// The estimated memory in bytes that must not be reached.
  static constexpr std::int64_t kMaximumMemoryUsage = 10 * 1024 * 1024;

  /// The monitor of `ValidationCache::shared()`.
  static ValidationCacheMonitor& shared();

  /// A monitor of `cache`, which it keeps alive.
  explicit ValidationCacheMonitor(std::shared_ptr<ValidationCache> cache);

  /// True when both targets are met. A failed target prints its warning line; the memory
  /// target is examined only when the hit rate passes. A cache that has served no
  /// requests fails.
  bool checkPerformanceTargets() const;

  /// The report: counters, hit rate, size, memory and the performance status, one item a
  /// line, without a trailing line break. Checking the status prints the warning of a
  /// failed target, as `checkPerformanceTargets` does.
  std::string generatePerformanceReport() const;

  /// Memory for the report: "%.2f MB" from one mebibyte up, "%.2f KB" from one kibibyte
  /// up, otherwise "<n> bytes".
  static std::string formatMemory(std::int64_t bytes);

 private:
  ValidationCacheMonitor() = default;
  ValidationCache& cache() const;

  std::shared_ptr<ValidationCache> cache_;  // empty for the shared monitor
};

}  // namespace corvane

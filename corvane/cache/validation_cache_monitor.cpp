#include "corvane/cache/validation_cache_monitor.hpp"

#include "corvane/cache/validation_cache.hpp"
#include "corvane/support/describe.hpp"
#include "corvane/support/print_line.hpp"

#include <fmt/format.h>

namespace corvane {

ValidationCacheMonitor& ValidationCacheMonitor::shared() {
  static ValidationCacheMonitor instance;
  return instance;
}

ValidationCacheMonitor::ValidationCacheMonitor(std::shared_ptr<ValidationCache> cache) : cache_(std::move(cache)) {}

ValidationCache& ValidationCacheMonitor::cache() const {
  return cache_ ? *cache_ : ValidationCache::shared();
}

bool ValidationCacheMonitor::checkPerformanceTargets() const {
  const auto statistics = cache().getStatistics();
  if (!(statistics.hitRate > kMinimumHitRate)) {
    printLine("⚠️ ValidationCache hit rate below target: " + describe(statistics.hitRate) + " < 0.9");
    return false;
  }
  if (statistics.memoryUsage < kMaximumMemoryUsage) return true;
  printLine(fmt::format("⚠️ ValidationCache memory usage above target: {} > {}", statistics.memoryUsage,
                        kMaximumMemoryUsage));
  return false;
}

std::string ValidationCacheMonitor::formatMemory(std::int64_t bytes) {
  const double kilobytes = static_cast<double>(bytes) * (1.0 / 1024.0);
  const double megabytes = kilobytes * (1.0 / 1024.0);
  if (megabytes >= 1.0) return fmt::format("{:.2f} MB", megabytes);
  if (kilobytes >= 1.0) return fmt::format("{:.2f} KB", kilobytes);
  return fmt::format("{} bytes", bytes);
}

std::string ValidationCacheMonitor::generatePerformanceReport() const {
  const auto statistics = cache().getStatistics();
  std::string report;
  report += "📊 ValidationCache Performance Report\n";
  report += "=====================================\n";
  report += fmt::format("Total Requests: {}\n", statistics.totalRequests);
  report += fmt::format("Cache Hits: {}\n", statistics.cacheHits);
  report += fmt::format("Cache Misses: {}\n", statistics.cacheMisses);
  report += fmt::format("Hit Rate: {:.2f}%\n", statistics.hitRate * 100);
  report += fmt::format("Cache Size: {} entries\n", statistics.cacheSize);
  report += "Memory Usage: " + formatMemory(statistics.memoryUsage) + "\n";
  report += "\n";
  report += "Performance Status: ";
  report += checkPerformanceTargets() ? "✅ GOOD" : "⚠️ NEEDS ATTENTION";
  return report;
}

}  // namespace corvane

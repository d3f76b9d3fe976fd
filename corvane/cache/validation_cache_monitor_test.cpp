#include "corvane/cache/validation_cache_monitor.hpp"

#include "corvane/cache/validation_cache.hpp"
#include "corvane/testing/captured_lines.hpp"
#include "corvane/testing/test_main_loop.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace corvane {
namespace {

class ValidationCacheMonitorTest : public ::testing::Test {
 protected:
  // Serves `misses` distinct keys once and then `hits` repeated lookups of the first key.
  void serve(int misses, int hits) {
    for (int i = 0; i < misses; ++i) cache->getOrCompute("k" + std::to_string(i), "", valid);
    for (int i = 0; i < hits; ++i) cache->getOrCompute("k0", "", valid);
  }
  // Adds entries `first` to `last` - 1, each a miss.
  void fill(int first, int last) {
    for (int i = first; i < last; ++i) {
      cache->validate("fill" + std::to_string(i), i, [](int) { return ValidationResult::valid(); });
    }
  }
  void hit(int times) {
    for (int i = 0; i < times; ++i) cache->validate("fill0", 0, [](int) { return ValidationResult::valid(); });
  }

  static ValidationResult valid() { return ValidationResult::valid(); }

  testing::TestMainLoop loop;
  std::shared_ptr<ValidationCache> cache = ValidationCache::create({100000, 3600.0, true});
  ValidationCacheMonitor monitor{cache};
  testing::CapturedLines lines;
};

TEST_F(ValidationCacheMonitorTest, AHitRateOfExactlyNinetyPercentFails) {
  serve(1, 9);  // 9 hits of 10 requests... plus the miss: 9/10
  EXPECT_FALSE(monitor.checkPerformanceTargets());
  EXPECT_EQ(lines.lines(), std::vector<std::string>{"⚠️ ValidationCache hit rate below target: 0.9 < 0.9"});
}

TEST_F(ValidationCacheMonitorTest, AFreshCacheFailsWithAZeroHitRate) {
  EXPECT_FALSE(monitor.checkPerformanceTargets());
  EXPECT_EQ(lines.lines(), std::vector<std::string>{"⚠️ ValidationCache hit rate below target: 0.0 < 0.9"});
}

TEST_F(ValidationCacheMonitorTest, MemoryTargetBoundaryIsJustBelowTenMebibytes) {
  fill(0, 41943);  // 10,485,750 bytes
  hit(420000);     // a hit rate just above 0.9, so that memory decides
  EXPECT_TRUE(monitor.checkPerformanceTargets());
  EXPECT_TRUE(lines.lines().empty());
  fill(41943, 41944);  // one entry more: 10,486,000 bytes
  EXPECT_FALSE(monitor.checkPerformanceTargets());
  EXPECT_EQ(lines.lines(),
            std::vector<std::string>{"⚠️ ValidationCache memory usage above target: 10486000 > 10485760"});
}

TEST_F(ValidationCacheMonitorTest, ReportListsTheCountersAndTheStatus) {
  serve(1, 3);
  EXPECT_EQ(monitor.generatePerformanceReport(),
            "📊 ValidationCache Performance Report\n"
            "=====================================\n"
            "Total Requests: 4\n"
            "Cache Hits: 3\n"
            "Cache Misses: 1\n"
            "Hit Rate: 75.00%\n"
            "Cache Size: 1 entries\n"
            "Memory Usage: 250 bytes\n"
            "\n"
            "Performance Status: ⚠️ NEEDS ATTENTION");
  EXPECT_EQ(lines.lines(), std::vector<std::string>{"⚠️ ValidationCache hit rate below target: 0.75 < 0.9"});
}

TEST_F(ValidationCacheMonitorTest, AHealthyCacheReportsGood) {
  serve(1, 19);
  const auto report = monitor.generatePerformanceReport();
  EXPECT_TRUE(report.ends_with("\n\nPerformance Status: ✅ GOOD")) << report;
  EXPECT_NE(report.find("Hit Rate: 95.00%\n"), std::string::npos);
  EXPECT_TRUE(lines.lines().empty());
}

TEST(ValidationCacheMonitorFormat, MemoryUnitsSwitchAtOneKibibyteAndOneMebibyte) {
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(4 * 250), "1000 bytes");
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(1023), "1023 bytes");
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(1024), "1.00 KB");
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(5 * 250), "1.22 KB");
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(1048575), "1024.00 KB");
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(4200 * 250), "1.00 MB");
  EXPECT_EQ(ValidationCacheMonitor::formatMemory(0), "0 bytes");
}

std::int64_t totalRequestsIn(const std::string& report) {
  constexpr std::string_view kLabel = "Total Requests: ";
  const auto start = report.find(kLabel);
  return start == std::string::npos ? -1 : std::stoll(report.substr(start + kLabel.size()));
}

TEST(ValidationCacheMonitorShared, ReportsLookupsThroughTheSharedCache) {
  testing::CapturedLines lines;  // the status check may warn about the shared cache's hit rate
  auto& monitor = ValidationCacheMonitor::shared();
  const auto before = totalRequestsIn(monitor.generatePerformanceReport());
  ASSERT_GE(before, 0);
  for (int lookup = 0; lookup < 3; ++lookup) {
    ValidationCache::shared().getOrCompute("monitor-shared-test", "hash", [] { return ValidationResult::valid(); });
  }
  EXPECT_EQ(totalRequestsIn(monitor.generatePerformanceReport()), before + 3);
}

}  // namespace
}  // namespace corvane

#include "corvane/support/print_line.hpp"

#include "corvane/testing/captured_lines.hpp"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace corvane {
namespace {

TEST(PrintLineConcurrency, LinesFromManyThreadsArriveWholeAndComplete) {
  testing::CapturedLines captured;
  constexpr int kThreads = 4;
  constexpr int kLines = 500;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([t] {
      for (int i = 0; i < kLines; ++i) printLine("thread " + std::to_string(t) + " line " + std::to_string(i));
    });
  }
  for (auto& thread : threads) thread.join();
  auto lines = captured.lines();
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kThreads * kLines));
  std::vector<int> next(kThreads, 0);
  for (const auto& line : lines) {
    int t = line[7] - '0';
    ASSERT_EQ(line, "thread " + std::to_string(t) + " line " + std::to_string(next[t]));
    ++next[t];  // each thread's lines keep their order
  }
}

}  // namespace
}  // namespace corvane

#include "corvane/support/adaptive_mutex.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace corvane::detail {
namespace {

// The updates of a non-atomic pair, read and written in several steps, stay whole: no two
// threads are ever inside at once, and every update is seen by the next holder.
TEST(AdaptiveMutexConcurrency, KeepsThreadsOutOfEachOthersCriticalSections) {
  AdaptiveMutex mutex;
  constexpr int kThreads = 4;
  constexpr int kRounds = 20000;
  long long count = 0;
  long long twice = 0;
  int inside = 0;
  std::atomic<int> overlaps{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < kRounds; ++i) {
        std::lock_guard held(mutex);
        if (++inside != 1) overlaps.fetch_add(1);
        const auto before = count;
        count = before + 1;
        twice += 2;
        --inside;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(overlaps.load(), 0);
  EXPECT_EQ(count, kThreads * kRounds);
  EXPECT_EQ(twice, 2 * count);
}

TEST(AdaptiveMutexConcurrency, TryLockFailsWhileAnotherThreadHoldsIt) {
  AdaptiveMutex mutex;
  mutex.lock();
  EXPECT_FALSE(std::async(std::launch::async, [&] { return mutex.try_lock(); }).get());
  mutex.unlock();
  EXPECT_TRUE(std::async(std::launch::async, [&] {
                const bool taken = mutex.try_lock();
                if (taken) mutex.unlock();
                return taken;
              }).get());
}

}  // namespace
}  // namespace corvane::detail

#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/observation_tracking.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace corvane {
namespace {

class Box : public Observable {};

TEST(ObservationConcurrency, ConcurrentWritersAndObserversLoseNoAnnouncement) {
  Box box;
  constexpr int kThreads = 4;
  constexpr int kWrites = 2000;
  std::atomic<int> observed{0};
  std::atomic<int> willChange{0};
  auto widthConnection = box.observe("width", [&] { observed.fetch_add(1, std::memory_order_relaxed); });
  auto willConnection = box.objectWillChange().connect([&] { willChange.fetch_add(1, std::memory_order_relaxed); });

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kWrites; ++i) {
        // Writers announce through the registrar only; the value itself is not shared.
        box.observationRegistrar().withMutation(t % 2 == 0 ? "width" : "height", [] {});
        if (i % 100 == 0) {
          auto transient = box.observe("height", [] {});
        }
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(observed.load(), kThreads / 2 * kWrites);
  EXPECT_EQ(willChange.load(), kThreads * kWrites);
}

TEST(ObservationConcurrency, EveryTrackingScopeFiresExactlyOnceWhileAnotherThreadWrites) {
  Box box;
  constexpr int kScopes = 500;
  std::vector<std::atomic<int>> fired(kScopes);
  std::thread writer([&] {
    for (int i = 0; i < 5000; ++i) box.observationRegistrar().withMutation("width", [] {});
  });
  for (int i = 0; i < kScopes; ++i) {
    withObservationTracking([&] { box.observationRegistrar().access("width"); },
                            [&fired, i] { fired[i].fetch_add(1); });
  }
  writer.join();
  box.observationRegistrar().withMutation("width", [] {});  // releases every scope still waiting
  for (int i = 0; i < kScopes; ++i) EXPECT_EQ(fired[i].load(), 1) << "scope " << i;
}

}  // namespace
}  // namespace corvane

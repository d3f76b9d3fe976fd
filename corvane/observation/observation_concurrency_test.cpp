#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/observation_signal.hpp"
#include "corvane/observation/observation_tracking.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
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

// Disconnecting must not return while another thread is still inside the callback, or the
// callback would go on using what its owner frees right after disconnecting. The callback
// waits (at most a second, so that a broken disconnection cannot hang the test) for the
// disconnection to return: it must not see that happen.
TEST(ObservationConcurrency, DisconnectingWaitsForACallbackRunningOnAnotherThread) {
  Box box;
  std::mutex mutex;
  std::condition_variable changed;
  bool inside = false;
  bool disconnected = false;
  bool disconnectedWhileInside = false;
  auto owned = std::make_unique<int>(0);
  auto connection = box.observe("width", [&] {
    std::unique_lock lock(mutex);
    inside = true;
    changed.notify_all();
    changed.wait_for(lock, std::chrono::seconds(1), [&] { return disconnected; });
    disconnectedWhileInside = disconnected;
    ++*owned;  // what the owner frees once disconnected
    inside = false;
  });
  std::thread writer([&] { box.observationRegistrar().withMutation("width", [] {}); });
  {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return inside; });
  }
  connection.disconnect();
  {
    std::lock_guard lock(mutex);
    disconnected = true;
    changed.notify_all();
    EXPECT_FALSE(inside) << "disconnect returned while the callback ran";
  }
  writer.join();
  EXPECT_FALSE(disconnectedWhileInside);
  EXPECT_EQ(*owned, 1);
}

// A callback may disconnect itself, also while another thread runs it too.
TEST(ObservationConcurrency, ACallbackThatDisconnectsItselfDoesNotWaitForItself) {
  Box box;
  std::barrier bothInside(2);
  std::atomic<int> calls{0};
  const auto mainThread = std::this_thread::get_id();
  decltype(std::declval<Box&>().observe("", {})) connection;
  connection = box.observe("width", [&] {
    calls.fetch_add(1);
    bothInside.arrive_and_wait();
    if (std::this_thread::get_id() == mainThread) connection.disconnect();
  });
  std::thread other([&] { box.observationRegistrar().withMutation("width", [] {}); });
  box.observationRegistrar().withMutation("width", [] {});
  other.join();
  EXPECT_FALSE(connection.connected());
  box.observationRegistrar().withMutation("width", [] {});
  EXPECT_EQ(calls.load(), 2);
}

}  // namespace
}  // namespace corvane

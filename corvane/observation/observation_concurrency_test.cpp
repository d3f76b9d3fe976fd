#include "corvane/observation/observation_registrar.hpp"
#include "corvane/observation/observation_signal.hpp"
#include "corvane/observation/observation_tracking.hpp"
#include "corvane/observation/pending_change.hpp"

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

// Observers come and go while other threads write: each callback uses an object that its
// owner frees as soon as the disconnection returns. No call may run after that, which
// AddressSanitizer would report as a use after free.
TEST(ObservationConcurrency, ObserversFreeWhatTheirCallbacksUseRightAfterDisconnecting) {
  Box box;
  std::atomic<bool> stop{false};
  std::atomic<long> writes{0};
  std::vector<std::thread> writers;
  for (int w = 0; w < 2; ++w) {
    writers.emplace_back([&] {
      while (!stop.load()) {
        box.observationRegistrar().withMutation("width", [] {});
        writes.fetch_add(1);
      }
    });
  }
  std::atomic<int> callsAfterDisconnecting{0};
  std::vector<std::thread> observers;
  for (int o = 0; o < 2; ++o) {
    observers.emplace_back([&] {
      for (int i = 0; i < 300; ++i) {
        struct Seen {
          std::atomic<int> calls{0};
          std::atomic<bool> disconnected{false};
        };
        auto seen = std::make_unique<Seen>();
        auto onWidth = box.observe("width", [state = seen.get(), &callsAfterDisconnecting] {
          state->calls.fetch_add(1);
          if (state->disconnected.load()) callsAfterDisconnecting.fetch_add(1);
        });
        auto onAny = box.objectWillChange().connect([state = seen.get()] { state->calls.fetch_add(1); });
        const long from = writes.load();
        while (seen->calls.load() == 0 && writes.load() < from + 1000) std::this_thread::yield();
        onWidth.disconnect();
        onAny.disconnect();
        seen->disconnected = true;
        seen.reset();
      }
    });
  }
  for (auto& observer : observers) observer.join();
  stop = true;
  for (auto& writer : writers) writer.join();
  EXPECT_EQ(callsAfterDisconnecting.load(), 0);
}

// Objects are destroyed while tracking scopes wait on them and on a long-lived object that
// another thread keeps writing, so that scopes fire (and tell the lists of the dying
// objects) while those lists go away. Every scope fires exactly once in the end.
TEST(ObservationConcurrency, ScopesFireWhileOtherObjectsTheyWaitOnAreDestroyed) {
  const auto baseline = detail::PendingChange::liveCount();
  Box kept;
  std::atomic<bool> stop{false};
  std::thread writer([&] {
    while (!stop.load()) kept.observationRegistrar().withMutation("width", [] {});
  });
  constexpr int kThreads = 2;
  constexpr int kScopes = 2000;
  std::atomic<int> fired{0};
  std::vector<std::thread> trackers;
  for (int t = 0; t < kThreads; ++t) {
    trackers.emplace_back([&] {
      for (int i = 0; i < kScopes; ++i) {
        auto temporary = std::make_unique<Box>();
        withObservationTracking(
            [&] {
              temporary->observationRegistrar().access("height");
              kept.observationRegistrar().access("width");
            },
            [&] { fired.fetch_add(1); });
        if (i % 3 == 0) temporary->observationRegistrar().withMutation("height", [] {});
        temporary.reset();
      }
    });
  }
  for (auto& thread : trackers) thread.join();
  stop = true;
  writer.join();
  kept.observationRegistrar().withMutation("width", [] {});  // fires the scopes still waiting
  EXPECT_EQ(fired.load(), kThreads * kScopes);
  EXPECT_EQ(detail::PendingChange::liveCount(), baseline);
}

}  // namespace
}  // namespace corvane

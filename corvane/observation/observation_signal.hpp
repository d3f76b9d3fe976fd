#pragma once

#include "corvane/observation/observation_connection.hpp"

#include <boost/signals2/signal.hpp>

#include <functional>

namespace corvane {

/// A thread-safe list of observer callbacks, all called, in the order connected, each time
/// it fires. The connections it hands out wait for running calls when they disconnect.
class ObservationSignal {
 public:
  ObservationSignal() = default;
  ObservationSignal(const ObservationSignal&) = delete;
  ObservationSignal& operator=(const ObservationSignal&) = delete;

  /// Calls `callback` on every firing until the returned connection disconnects.
  [[nodiscard]] ObservationConnection connect(std::function<void()> callback);

  /// Calls every connected callback on this thread. An exception from a callback reaches
  /// the caller, and the callbacks after it are not called.
  void operator()();

 private:
  boost::signals2::signal<void()> signal_;
};

}  // namespace corvane

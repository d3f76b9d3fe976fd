#pragma once

#include <boost/signals2/connection.hpp>

#include <functional>
#include <memory>

namespace corvane {

/// The link between an observer callback and an observable object, made by `observe` or
/// `objectWillChange().connect`. It disconnects when destroyed (or on `disconnect()`).
///
/// Disconnecting waits for calls of the callback that other threads are running, so that
/// whatever the callback uses may be destroyed as soon as `disconnect()` returns. A callback
/// may disconnect itself (its own call is not waited for). A connection object is used by
/// one thread at a time, except that calls still running may ask `connected()` while it
/// disconnects. Do not disconnect while holding a lock that the callback takes, and do not
/// let two callbacks disconnect each other from two threads at once: either would wait
/// forever.
class ObservationConnection {
 public:
  /// A connection to nothing.
  ObservationConnection() noexcept = default;
  ObservationConnection(ObservationConnection&& other) noexcept = default;
  /// Disconnects this connection, then takes over `other`'s.
  ObservationConnection& operator=(ObservationConnection&& other) noexcept;
  ~ObservationConnection();

  /// Stops the callback from being called and waits for calls running on other threads.
  /// Does nothing when already disconnected. The callback is released once no call runs.
  void disconnect() noexcept;
  /// Whether the callback is still called on announcements.
  bool connected() const noexcept;

 private:
  friend class ObservationSignal;
  struct Gate;
  // Wraps `callback` in a gate and hands the gated callback to `attach`, which connects it.
  static ObservationConnection make(std::function<void()> callback,
                                    const std::function<boost::signals2::connection(std::function<void()>)>& attach);
  explicit ObservationConnection(std::shared_ptr<Gate> gate) noexcept : gate_(std::move(gate)) {}

  std::shared_ptr<Gate> gate_;
};

}  // namespace corvane

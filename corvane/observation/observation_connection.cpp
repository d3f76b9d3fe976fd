#include "corvane/observation/observation_connection.hpp"

#include <condition_variable>
#include <mutex>

namespace corvane {

// Shared by the connection and the slot it guards. A call enters only while the gate is
// open and is counted while it runs, so that closing can wait for the calls in progress.
struct ObservationConnection::Gate {
  explicit Gate(std::function<void()> callback_) : callback(std::move(callback_)) {}

  void call();
  void close() noexcept;
  bool isOpen() noexcept {
    std::lock_guard lock(mutex);
    return open;
  }

  std::mutex mutex;
  std::condition_variable idle;
  bool open = true;
  int running = 0;
  std::function<void()> callback;
  boost::signals2::connection slot;
};

namespace {

// The gates whose callbacks this thread is running, innermost first: closing a gate does not
// wait for calls of this thread, which sit further up its own stack.
struct RunningCall {
  explicit RunningCall(const void* gate_) : gate(gate_), enclosing(innermost) { innermost = this; }
  ~RunningCall() { innermost = enclosing; }
  RunningCall(const RunningCall&) = delete;
  RunningCall& operator=(const RunningCall&) = delete;

  static int callsOnThisThread(const void* gate) {
    int calls = 0;
    for (const RunningCall* call = innermost; call; call = call->enclosing) calls += call->gate == gate ? 1 : 0;
    return calls;
  }

  static thread_local RunningCall* innermost;
  const void* gate;
  RunningCall* enclosing;
};

thread_local RunningCall* RunningCall::innermost = nullptr;

}  // namespace

void ObservationConnection::Gate::call() {
  {
    std::lock_guard lock(mutex);
    if (!open) return;
    ++running;
  }
  struct Leave {
    Gate& gate;
    ~Leave() {
      std::function<void()> released;
      {
        std::lock_guard lock(gate.mutex);
        --gate.running;
        if (!gate.open && gate.running == 0) released = std::move(gate.callback);
      }
      gate.idle.notify_all();
    }
  } leave{*this};
  RunningCall here(this);
  callback();
}

void ObservationConnection::Gate::close() noexcept {
  slot.disconnect();
  std::function<void()> released;  // destroyed outside the lock: its captures may do anything
  {
    std::unique_lock lock(mutex);
    open = false;
    const int own = RunningCall::callsOnThisThread(this);
    idle.wait(lock, [&] { return running == own; });
    if (running == 0) released = std::move(callback);
  }
}

ObservationConnection& ObservationConnection::operator=(ObservationConnection&& other) noexcept {
  if (this != &other) {
    disconnect();
    gate_ = std::move(other.gate_);
  }
  return *this;
}

ObservationConnection::~ObservationConnection() {
  disconnect();
}

void ObservationConnection::disconnect() noexcept {
  if (!gate_) return;
  // The gate is kept until the calls have ended, so that they may still ask `connected()`.
  gate_->close();
  gate_.reset();
}

bool ObservationConnection::connected() const noexcept {
  return gate_ && gate_->isOpen();
}

ObservationConnection ObservationConnection::make(
    std::function<void()> callback, const std::function<boost::signals2::connection(std::function<void()>)>& attach) {
  auto gate = std::make_shared<Gate>(std::move(callback));
  // The slot owns the gate too, and each call holds it, so that a call in progress keeps
  // the gate whatever happens to the connection or the slot meanwhile.
  gate->slot = attach([gate] {
    auto keep = gate;
    keep->call();
  });
  return ObservationConnection(std::move(gate));
}

}  // namespace corvane

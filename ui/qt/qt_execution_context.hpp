#pragma once

#include <boost/asio/execution.hpp>
#include <boost/asio/execution_context.hpp>

#include <QtCore/QObject>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace corvane::ui {

/// An Asio execution context whose work runs on the Qt event loop of the thread that
/// created it, so that coroutines spawned on it (and `corvane::mainExecutor()` once it is
/// installed) run on the user-interface thread. Asio timers on it work: Asio gives any
/// execution context a private reactor thread that waits for them and hands completions
/// back through `executor_type`, i.e. to the event loop.
class QtExecutionContext final : public boost::asio::execution_context {
 public:
  /// Posts work to the owning context's event loop; never runs it inline.
  class executor_type {
   public:
    explicit executor_type(QtExecutionContext& context) noexcept : context_(&context) {}

    /// Queues `work` behind the events already waiting on the loop.
    template <class Work>
    void execute(Work&& work) const {
      // Asio's handlers are move-only; Qt's queued functors are copied.
      auto shared = std::make_shared<std::decay_t<Work>>(std::forward<Work>(work));
      context_->post([shared] { (*shared)(); });
    }

    QtExecutionContext& query(boost::asio::execution::context_t) const noexcept { return *context_; }
    static constexpr boost::asio::execution::blocking_t query(boost::asio::execution::blocking_t) noexcept {
      return boost::asio::execution::blocking.never;
    }
    executor_type require(boost::asio::execution::blocking_t::never_t) const noexcept { return *this; }

    friend bool operator==(const executor_type& a, const executor_type& b) noexcept { return a.context_ == b.context_; }
    friend bool operator!=(const executor_type& a, const executor_type& b) noexcept { return !(a == b); }

   private:
    QtExecutionContext* context_;
  };

  /// Binds the context to the current thread's event loop.
  QtExecutionContext();
  /// Stops Asio's services (and their timer thread) first, then drops work not yet run.
  ~QtExecutionContext();

  QtExecutionContext(const QtExecutionContext&) = delete;
  QtExecutionContext& operator=(const QtExecutionContext&) = delete;

  executor_type get_executor() noexcept { return executor_type(*this); }

 private:
  void post(std::function<void()> work);

  std::unique_ptr<QObject> receiver_;
};

}  // namespace corvane::ui

#pragma once

#include "corvane/support/main_executor.hpp"

#include <boost/asio/awaitable.hpp>
#include <boost/asio/bind_cancellation_slot.hpp>
#include <boost/asio/cancellation_signal.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/system/system_error.hpp>

#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

namespace corvane::testing {

/// An `io_context` installed as the library's main executor for the life of the object,
/// so that a test decides when "later, on the main queue" happens.
class TestMainLoop {
 public:
  TestMainLoop() { setMainExecutor(context_.get_executor()); }
  ~TestMainLoop() {
    setMainExecutor({});
    // Destroying handlers that never ran must not call back into the test.
    context_.stop();
  }
  TestMainLoop(const TestMainLoop&) = delete;
  TestMainLoop& operator=(const TestMainLoop&) = delete;

  boost::asio::io_context& context() { return context_; }

  /// Runs every handler that is ready, including those they post, until none is left.
  /// Returns how many ran.
  std::size_t drain() {
    std::size_t count = 0;
    context_.restart();
    while (std::size_t ran = context_.poll()) {
      count += ran;
      context_.restart();
    }
    return count;
  }

  /// Runs the loop until `operation` completes, then returns its value or rethrows its
  /// exception. Timers inside the operation run in real time.
  template <class T>
  T run(boost::asio::awaitable<T> operation) {
    std::exception_ptr failure;
    std::optional<T> value;
    bool done = false;
    boost::asio::co_spawn(context_, std::move(operation), [&](std::exception_ptr error, T result) {
      failure = error;
      if (!error) value.emplace(std::move(result));
      done = true;
    });
    runUntil(done);
    if (failure) std::rethrow_exception(failure);
    return std::move(*value);
  }

  /// `run` for operations without a value.
  void run(boost::asio::awaitable<void> operation) {
    std::exception_ptr failure;
    bool done = false;
    boost::asio::co_spawn(context_, std::move(operation), [&](std::exception_ptr error) {
      failure = error;
      done = true;
    });
    runUntil(done);
    if (failure) std::rethrow_exception(failure);
  }

  /// Starts `operation`, runs the loop until nothing is ready (the operation now waits),
  /// calls `whileWaiting`, cancels the operation (terminal) and runs what that wakes.
  /// Returns the `system_error` the operation ended with; rethrows any other exception, and
  /// throws `std::logic_error` when the operation finished before the cancellation, or
  /// without an error, or not at all.
  boost::system::system_error cancelWhileWaiting(boost::asio::awaitable<void> operation,
                                                 const std::function<void()>& whileWaiting = {}) {
    boost::asio::cancellation_signal cancel;
    std::exception_ptr failure;
    bool done = false;
    boost::asio::co_spawn(context_, std::move(operation),
                          boost::asio::bind_cancellation_slot(cancel.slot(), [&](std::exception_ptr error) {
                            failure = error;
                            done = true;
                          }));
    drain();
    if (done) throw std::logic_error("the operation finished before it was cancelled");
    if (whileWaiting) whileWaiting();
    cancel.emit(boost::asio::cancellation_type::terminal);
    drain();
    if (!done) throw std::logic_error("the cancelled operation did not finish");
    if (!failure) throw std::logic_error("the cancelled operation finished without an error");
    try {
      std::rethrow_exception(failure);
    } catch (const boost::system::system_error& error) {
      return error;
    }
  }

 private:
  void runUntil(const bool& done) {
    context_.restart();
    while (!done) {
      // With nothing left to run, the operation waits for something that never comes.
      if (context_.run_one() == 0) throw std::logic_error("the operation can no longer complete");
    }
  }

  boost::asio::io_context context_;
};

}  // namespace corvane::testing

#pragma once

#include <boost/asio/awaitable.hpp>

#include <chrono>

namespace corvane {

/// Suspends the calling coroutine for `duration` without blocking its thread. Cancelling
/// the coroutine (for example when a parallel group cancels its other children) ends the
/// wait early with `boost::system::system_error` holding `asio::error::operation_aborted`.
boost::asio::awaitable<void> sleepFor(std::chrono::nanoseconds duration);

}  // namespace corvane

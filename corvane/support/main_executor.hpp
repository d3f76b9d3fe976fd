#pragma once

#include <boost/asio/any_io_executor.hpp>

namespace corvane {

/// The executor of the host's user-interface thread: where the library sends work that
/// must happen "later, on the main queue" (published counters, resets) and where its
/// coroutines are meant to run. Until a host installs one, this is a strand on Asio's
/// system executor: work runs on a pool thread, in the order posted, one piece at a time.
boost::asio::any_io_executor mainExecutor();

/// Installs the host's user-interface executor. An empty executor restores the default.
/// Tests install an `io_context`'s executor and drain it explicitly.
void setMainExecutor(boost::asio::any_io_executor executor);

}  // namespace corvane

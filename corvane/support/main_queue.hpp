#pragma once

#include <functional>

namespace corvane {

/// Queues `work` on the main executor and returns at once; it runs later on the host's
/// user-interface thread, in the order posted. A light alternative to `mainExecutor()`
/// for code that must not pull Asio into its headers.
void postToMain(std::function<void()> work);

}  // namespace corvane

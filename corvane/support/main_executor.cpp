#include "corvane/support/main_executor.hpp"

#include "corvane/support/main_queue.hpp"

#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>
#include <boost/asio/system_executor.hpp>

#include <mutex>
#include <utility>

namespace corvane {
namespace {

struct MainExecutorState {
  std::mutex mutex;
  boost::asio::any_io_executor executor;
};

MainExecutorState& state() {
  static MainExecutorState instance;
  return instance;
}

// Without a host loop the main queue is still one queue: a strand keeps posted work in
// order and runs one piece at a time, as a user-interface thread would. Never destroyed,
// so that work posted during exit does not meet a strand whose service is gone.
const boost::asio::any_io_executor& fallbackExecutor() {
  static const auto* strand = new boost::asio::any_io_executor(boost::asio::make_strand(boost::asio::system_executor()));
  return *strand;
}

}  // namespace

boost::asio::any_io_executor mainExecutor() {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  if (s.executor) return s.executor;
  return fallbackExecutor();
}

void setMainExecutor(boost::asio::any_io_executor executor) {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  s.executor = std::move(executor);
}

void postToMain(std::function<void()> work) {
  boost::asio::post(mainExecutor(), std::move(work));
}

}  // namespace corvane

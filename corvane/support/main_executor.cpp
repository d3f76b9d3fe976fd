#include "corvane/support/main_executor.hpp"

#include "corvane/support/main_queue.hpp"

#include <boost/asio/post.hpp>
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

}  // namespace

boost::asio::any_io_executor mainExecutor() {
  auto& s = state();
  std::lock_guard lock(s.mutex);
  if (s.executor) return s.executor;
  return boost::asio::system_executor();
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

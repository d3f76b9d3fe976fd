#include "corvane/support/sleep.hpp"

#include "corvane/testing/test_main_loop.hpp"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

using namespace std::chrono_literals;

TEST(SleepFor, SuspendsWithoutBlockingOtherWorkOnTheSameThread) {
  testing::TestMainLoop loop;
  std::vector<int> order;
  boost::asio::co_spawn(
      loop.context(),
      [&]() -> boost::asio::awaitable<void> {
        order.push_back(1);
        co_await sleepFor(20ms);
        order.push_back(3);
      },
      boost::asio::detached);
  boost::asio::post(loop.context(), [&] { order.push_back(2); });
  loop.context().run();
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(SleepFor, CancellationEndsTheWaitWithOperationAborted) {
  testing::TestMainLoop loop;
  EXPECT_EQ(loop.cancelWhileWaiting(sleepFor(1h)).code(), boost::asio::error::operation_aborted);
}

}  // namespace
}  // namespace corvane

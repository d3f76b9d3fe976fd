#include "corvane/support/main_executor.hpp"
#include "corvane/support/main_queue.hpp"

#include "corvane/testing/test_main_loop.hpp"

#include <boost/asio/post.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>
#include <vector>

namespace corvane {
namespace {

TEST(MainExecutor, WithoutAHostLoopWorkStillRuns) {
  setMainExecutor({});
  std::promise<std::thread::id> ranOn;
  postToMain([&] { ranOn.set_value(std::this_thread::get_id()); });
  auto future = ranOn.get_future();
  // The system executor runs it on one of its own threads.
  EXPECT_NE(future.get(), std::this_thread::get_id());
}

TEST(MainExecutor, WithoutAHostLoopWorkRunsInOrderOnePieceAtATime) {
  setMainExecutor({});
  constexpr int kPieces = 2000;
  std::vector<int> order;  // unguarded on purpose: only one piece may run at a time
  std::atomic<bool> running{false};
  std::atomic<bool> overlapped{false};
  std::atomic<int> finished{0};
  std::promise<void> done;
  for (int piece = 0; piece < kPieces; ++piece) {
    postToMain([&, piece] {
      if (running.exchange(true)) overlapped = true;
      order.push_back(piece);
      running = false;
      if (++finished == kPieces) done.set_value();
    });
  }
  done.get_future().wait();
  EXPECT_FALSE(overlapped);
  ASSERT_EQ(order.size(), static_cast<std::size_t>(kPieces));
  for (int piece = 0; piece < kPieces; ++piece) ASSERT_EQ(order[piece], piece);
}

TEST(MainExecutor, InstalledLoopRunsWorkOnlyWhenDrainedAndInOrder) {
  testing::TestMainLoop loop;
  std::vector<int> order;
  postToMain([&] { order.push_back(1); });
  boost::asio::post(mainExecutor(), [&] {
    order.push_back(2);
    postToMain([&] { order.push_back(3); });  // work queued by work also runs in the same drain
  });
  EXPECT_TRUE(order.empty());
  EXPECT_EQ(loop.drain(), 3u);
  EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
  EXPECT_EQ(loop.drain(), 0u);
}

TEST(MainExecutor, RemovingTheLoopRestoresTheDefault) {
  setMainExecutor({});
  const auto fallback = mainExecutor();
  {
    testing::TestMainLoop loop;
    EXPECT_EQ(mainExecutor(), boost::asio::any_io_executor(loop.context().get_executor()));
  }
  EXPECT_EQ(mainExecutor(), fallback);
}

}  // namespace
}  // namespace corvane

#include "base/background_job.h"

#include <gtest/gtest.h>

#include "support/wait.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;
using SystemClock = std::chrono::steady_clock;

TEST(BackgroundJob, HandsMessagesOverInTheirOrder) {
  BackgroundJob<int> job;
  EXPECT_FALSE(job.running());
  EXPECT_EQ(job.take(), std::nullopt);
  job.start([](JobSide<int>& side) {
    for (int i = 1; i <= 3; ++i) side.post(i);
    throw std::runtime_error("the mailbox stays");
  });
  ASSERT_TRUE(test::waitUntil(5, [&] { return !job.running(); }));
  EXPECT_EQ(job.waiting(), 3U);
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(job.take(), i);
  EXPECT_EQ(job.take(), std::nullopt);
}

TEST(BackgroundJob, IsLeftWithoutAWait) {
  std::atomic<bool> release{false};
  std::atomic<int> stopped{0};
  {
    BackgroundJob<int> job;
    const auto stubborn = [&](JobSide<int>& side) {
      while (!release) std::this_thread::sleep_for(milliseconds(1));
      stopped += side.stop() ? 1 : 0;
      side.post(7);
    };
    const auto start = SystemClock::now();
    job.start(stubborn);
    job.start(stubborn);
    job.leave();
    EXPECT_LT(SystemClock::now() - start, milliseconds(200));
    EXPECT_EQ(job.take(), std::nullopt) << "what a left job posts is nobody's";
  }
  EXPECT_FALSE(joinLeftThreads(milliseconds(30)));
  release = true;
  EXPECT_TRUE(joinLeftThreads(milliseconds(5000)));
  EXPECT_EQ(stopped, 2);
}

}  // namespace
}  // namespace tavek

#include "player/media_queue.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "player/audio_clock.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

bool push(PacketQueue& queue, unsigned round) {
  Tagged<ffmpeg::PacketPtr> packet{ffmpeg::makePacket(), round};
  const bool taken = queue.push(packet);
  EXPECT_EQ(taken, packet.item == nullptr) << "a refused packet stays with its owner";
  return taken;
}

/// The round of the next packet, or -1.
int pop(PacketQueue& queue) {
  Tagged<ffmpeg::PacketPtr> packet;
  return queue.pop(packet) ? static_cast<int>(packet.seekRound) : -1;
}

class Signalled {
 public:
  Signalled() { stopSignalled = true; }
  ~Signalled() { stopSignalled = false; }
};

TEST(MediaQueue, FinishedGivesWhatIsInside) {
  PacketQueue queue(4);
  for (unsigned i = 0; i < 3; ++i) ASSERT_TRUE(push(queue, i));
  queue.finish();
  EXPECT_FALSE(push(queue, 9));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(pop(queue), i);
  EXPECT_EQ(pop(queue), -1);
}

TEST(MediaQueue, ClosedGivesNothing) {
  PacketQueue queue(4);
  ASSERT_TRUE(push(queue, 1));
  queue.close();
  EXPECT_EQ(pop(queue), -1);
  EXPECT_FALSE(push(queue, 2));
  Tagged<ffmpeg::PacketPtr> packet;
  EXPECT_FALSE(queue.tryPop(packet));
}

TEST(MediaQueue, BlockedThreadsWakeUp) {
  const struct {
    const char* what;
    void (*wake)(PacketQueue&);
    bool taken;
  } cases[] = {
      {"close", [](PacketQueue& q) { q.close(); }, false},
      {"clear", [](PacketQueue& q) { q.clear(); }, true},
      {"pop", [](PacketQueue& q) { pop(q); }, true},
  };
  for (const auto& c : cases) {
    PacketQueue queue(1);
    ASSERT_TRUE(push(queue, 1));
    bool taken = !c.taken;
    std::thread producer([&] { taken = push(queue, 2); });
    std::this_thread::sleep_for(milliseconds(20));
    c.wake(queue);
    producer.join();
    EXPECT_EQ(taken, c.taken) << c.what;
  }
}

TEST(MediaQueue, ASignalEndsWaitsWithoutAWakeUp) {
  PacketQueue empty(1);
  PacketQueue full(1);
  ASSERT_TRUE(push(full, 1));
  Clock::time_point popEnd;
  Clock::time_point pushEnd;
  std::thread consumer([&] {
    EXPECT_EQ(pop(empty), -1);
    popEnd = Clock::now();
  });
  std::thread producer([&] {
    EXPECT_FALSE(push(full, 2));
    pushEnd = Clock::now();
  });
  std::this_thread::sleep_for(milliseconds(120));
  const Signalled signalled;
  const Clock::time_point sent = Clock::now();
  consumer.join();
  producer.join();
  // 50 ms by the rule; the rest is what a busy machine may take to run the threads again.
  EXPECT_LT(std::max(popEnd, pushEnd) - sent, milliseconds(150));
}

TEST(AudioClock, RunsOnToTheEndOfWhatWasWritten) {
  AudioClock clock;
  const AudioClock::Time t0{milliseconds(1000)};
  EXPECT_EQ(clock.heardUs(t0), 0);
  clock.wrote(500'000, 500'000, t0);
  EXPECT_EQ(clock.heardUs(t0 + milliseconds(300)), 0) << "nothing is heard before the device has started";
  clock.wrote(600'000, 450'000, t0);
  for (const auto& [afterMs, heard] :
       {std::pair{-20, 150'000}, std::pair{0, 150'000}, std::pair{100, 250'000}, std::pair{450, 600'000},
        std::pair{900, 600'000}}) {
    EXPECT_EQ(clock.heardUs(t0 + milliseconds(afterMs)), heard) << afterMs;
  }
  clock.set(70'000);
  EXPECT_EQ(clock.heardUs(t0 + milliseconds(100)), 70'000) << "a seek's target stands";
}

}  // namespace
}  // namespace tavek

#include <atomic>
#include <chrono>
#include <semaphore>
#include <thread>

#include <gtest/gtest.h>

#include "player/media_queue.h"
#include "player/sound_clock.h"
#include "player/stale_frames.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

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

TEST(MediaQueue, ClosedGivesNothing) {
  PacketQueue queue({.count = 4});
  ASSERT_TRUE(push(queue, 1));
  queue.close();
  EXPECT_EQ(pop(queue), -1);
  EXPECT_FALSE(push(queue, 2));
  EXPECT_TRUE(queue.empty());
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
    PacketQueue queue({.count = 1});
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
  PacketQueue empty({.count = 1});
  PacketQueue full({.count = 1});
  ASSERT_TRUE(push(full, 1));
  SteadyClock::time_point popEnd;
  SteadyClock::time_point pushEnd;
  std::thread consumer([&] {
    EXPECT_EQ(pop(empty), -1);
    popEnd = SteadyClock::now();
  });
  std::thread producer([&] {
    EXPECT_FALSE(push(full, 2));
    pushEnd = SteadyClock::now();
  });
  std::this_thread::sleep_for(milliseconds(120));
  const Signalled signalled;
  const SteadyClock::time_point sent = SteadyClock::now();
  consumer.join();
  producer.join();
  // 50 ms by the rule; the rest is what a busy machine may take to run the threads again.
  EXPECT_LT(std::max(popEnd, pushEnd) - sent, milliseconds(150));
}

TEST(FrameQueue, IsBoundByBytesAsWell) {
  const struct {
    const char* what;
    int width, height;
    std::size_t taken;
  } cases[] = {
      {"small pictures by their count", 64, 64, 20},
      {"large ones by their bytes", 1000, 1000, 13},
      {"huge ones still have a few", 4000, 4000, 3},
  };
  for (const auto& c : cases) {
    FrameQueue queue({.count = 20, .bytes = 20'000'000, .countAtLeast = 3});
    std::atomic<std::size_t> taken = 0;
    std::thread producer([&] {
      for (;; ++taken) {
        Tagged<ffmpeg::FramePtr> picture{ffmpeg::makeFrame()};
        picture.item->buf[0] =
            av_buffer_alloc(static_cast<std::size_t>(c.width) * static_cast<std::size_t>(c.height) * 3 / 2);
        if (!queue.push(picture)) return;
      }
    });
    const auto limit = SteadyClock::now() + std::chrono::seconds(5);
    while (taken < c.taken && SteadyClock::now() < limit) std::this_thread::sleep_for(milliseconds(1));
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(taken, c.taken) << c.what;
    queue.close();
    producer.join();
  }
}

/// Lends out a fixed number of pictures, and waits for one to come back.
class Lender {
 public:
  ffmpeg::FramePtr lend() {
    free_.acquire();
    ffmpeg::FramePtr picture = ffmpeg::makeFrame();
    picture->buf[0] = av_buffer_create(
        byte_, 1, [](void* lender, std::uint8_t*) { static_cast<Lender*>(lender)->free_.release(); }, this,
        0);
    return picture;
  }

 private:
  std::uint8_t byte_[1]{};
  std::counting_semaphore<4> free_{4};
};

TEST(FrameQueue, GivesADecoderItsPicturesBackWhenItIsClosed) {
  Lender decoder;
  FrameQueue queue;
  std::atomic<bool> refused = false;
  std::thread producer([&] {
    for (bool taken = true; taken;) {
      Tagged<ffmpeg::FramePtr> picture{decoder.lend()};
      taken = queue.push(picture);
    }
    refused = true;
  });
  std::this_thread::sleep_for(milliseconds(20));
  queue.close();
  const auto limit = SteadyClock::now() + std::chrono::seconds(5);
  while (!refused && SteadyClock::now() < limit) std::this_thread::sleep_for(milliseconds(1));
  EXPECT_TRUE(refused) << "the decoder waits for its pictures";
  queue.clear();
  producer.join();
}

TEST(StaleFrames, AreThoseOfThePlaceBeforeTheSeek) {
  const auto frame = [](std::int64_t stamp) {
    ffmpeg::FramePtr made = ffmpeg::makeFrame();
    made->best_effort_timestamp = stamp;
    return made;
  };
  const ffmpeg::PacketPtr packet = ffmpeg::makePacket();
  StaleFrames frames;
  EXPECT_FALSE(frames.isStale(*frame(900))) << "nobody has sought";
  for (const std::int64_t old : {900, 100}) {
    frames.seek();
    packet->dts = 480;
    packet->pts = 520;
    frames.sent(*packet);
    packet->dts = packet->pts = 500;
    frames.sent(*packet);
    EXPECT_TRUE(frames.isStale(*frame(old)));
    EXPECT_TRUE(frames.isStale(*frame(old + 1)));
    EXPECT_FALSE(frames.isStale(*frame(480)));
    EXPECT_FALSE(frames.isStale(*frame(900))) << "what follows a picture of the new place is new";
  }
  frames.seek();
  frames.sent(*packet);
  for (int i = 0; i < 32; ++i) EXPECT_TRUE(frames.isStale(*frame(i)));
  EXPECT_FALSE(frames.isStale(*frame(32))) << "no decoder held so many: its stamps are its own";
  frames.seek();
  packet->dts = packet->pts = AV_NOPTS_VALUE;
  frames.sent(*packet);
  EXPECT_FALSE(frames.isStale(*frame(7))) << "nothing is known of what was sent";
}

TEST(SoundClock, IsKnownOnlyWhileSoundIsHeard) {
  SoundClock clock;
  const SoundClock::Time t0{milliseconds(1000)};
  const auto at = [&](int ms) { return clock.heardUs(t0 + milliseconds(ms)); };
  clock.seek(1);
  clock.wrote(1, 500'000, 500'000, t0);
  EXPECT_EQ(at(300), 0) << "nothing is heard before the device has started";
  clock.wrote(1, 600'000, 450'000, t0);
  for (const auto& [afterMs, heard] :
       {std::pair{-20, 150'000}, std::pair{0, 150'000}, std::pair{100, 250'000}, std::pair{450, 600'000},
        std::pair{900, 600'000}}) {
    EXPECT_EQ(at(afterMs), heard) << afterMs;
  }
  clock.pause(t0 + milliseconds(100));
  EXPECT_EQ(at(400), 250'000) << "it stands in a pause";
  clock.wrote(1, 650'000, 400'000, t0 + milliseconds(200));
  EXPECT_EQ(at(400), 250'000) << "and while the device is filled up in the pause";
  clock.resume(t0 + milliseconds(500));
  EXPECT_EQ(at(600), 350'000) << "it goes on from where it stood";
  clock.seek(2);
  clock.wrote(1, 900'000, 1, t0);
  EXPECT_EQ(at(600), 0) << "what comes late from before a seek says nothing";
  clock.wrote(2, 100'000, 40'000, t0);
  clock.silence(1);
  EXPECT_EQ(at(0), 60'000);
  clock.silence(2);
  EXPECT_EQ(at(0), 0);
}

}  // namespace
}  // namespace tavek

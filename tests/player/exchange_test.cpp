#include <semaphore>

#include <gtest/gtest.h>

#include "player/media_queue.h"
#include "player/sound_clock.h"
#include "player/stale_frames.h"
#include "support/wait.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;
using test::waitUntil;
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

TEST(MediaQueue, BlockedThreadsWakeUp) {
  const std::tuple<const char*, void (*)(PacketQueue&), bool> cases[] = {
      {"close", [](PacketQueue& q) { q.close(); }, false},
      {"clear", [](PacketQueue& q) { q.clear(); }, true},
      {"pop", [](PacketQueue& q) { pop(q); }, true},
      // By the rule within 50 ms; the rest is what a busy machine may take to run the threads again.
      {"a signal, which wakes nobody", [](PacketQueue&) { stopSignalled = true; }, false},
  };
  for (const auto& [what, wake, takes] : cases) {
    PacketQueue full({.count = 1}), empty({.count = 1});
    ASSERT_TRUE(push(full, 1));
    bool taken = !takes;
    std::thread producer([&] { taken = push(full, 2); });
    std::thread consumer([&] { EXPECT_EQ(pop(empty), -1); });
    std::this_thread::sleep_for(milliseconds(70));
    const auto start = SteadyClock::now();
    wake(full);
    if (!stopSignalled) empty.close();
    producer.join();
    consumer.join();
    EXPECT_LT(SteadyClock::now() - start, milliseconds(150)) << what;
    stopSignalled = false;
    EXPECT_EQ(taken, takes) << what;
    EXPECT_EQ(pop(full), takes ? 2 : -1) << what;
  }
}

/// A decoder that fills a queue until it is closed.
class Decoder {
 public:
  Decoder(FrameQueue& queue, std::function<AVBufferRef*()> makePicture)
      : thread_([this, &queue, makePicture = std::move(makePicture)] {
          for (;; ++taken) {
            Tagged<ffmpeg::FramePtr> picture{ffmpeg::makeFrame()};
            picture.item->buf[0] = makePicture();
            if (!queue.push(picture)) break;
          }
          ended = true;
        }) {}

  std::atomic<std::size_t> taken = 0;
  std::atomic<bool> ended = false;

 private:
  std::jthread thread_;
};

TEST(FrameQueue, IsBoundByBytesAsWell) {
  // Small pictures by their count, large ones by their bytes; huge ones still have a few.
  for (const auto& [bytes, taken] :
       {std::pair<std::size_t, std::size_t>{6'144, 20}, {1'500'000, 13}, {24'000'000, 3}}) {
    FrameQueue queue({.count = 20, .bytes = 20'000'000, .countAtLeast = 3});
    const Decoder decoder(queue, [size = bytes] { return av_buffer_alloc(size); });
    test::waitUntil(5, [&, most = taken] { return decoder.taken >= most; });
    std::this_thread::sleep_for(milliseconds(20));
    EXPECT_EQ(decoder.taken, taken) << bytes;
    queue.close();
  }
}

TEST(FrameQueue, GivesADecoderItsPicturesBackWhenItIsClosed) {
  std::uint8_t byte[1]{};
  std::counting_semaphore<4> free(4);
  const auto giveBack = [](void* lent, std::uint8_t*) {
    static_cast<std::counting_semaphore<4>*>(lent)->release();
  };
  FrameQueue queue;
  const Decoder decoder(queue, [&] {
    free.acquire();
    return av_buffer_create(byte, 1, giveBack, &free, 0);
  });
  EXPECT_TRUE(waitUntil(5, [&] { return decoder.taken == 4; }));
  queue.close();
  EXPECT_TRUE(waitUntil(5, [&] { return decoder.ended.load(); })) << "the decoder waits for its pictures";
  queue.clear();
}

TEST(StaleFrames, AreThoseOfThePlaceBeforeTheSeek) {
  StaleFrames frames;
  const auto isStale = [&](std::int64_t stamp) {
    const ffmpeg::FramePtr frame = ffmpeg::makeFrame();
    frame->best_effort_timestamp = stamp;
    return frames.isStale(*frame);
  };
  const ffmpeg::PacketPtr packet = ffmpeg::makePacket();
  EXPECT_FALSE(isStale(900)) << "nobody has sought";
  for (const std::int64_t old : {900, 100}) {
    frames.seek();
    packet->dts = 480;
    packet->pts = 520;
    frames.sent(*packet);
    EXPECT_TRUE(isStale(old) && isStale(old + 1)) << old;
    EXPECT_FALSE(isStale(480));
    EXPECT_FALSE(isStale(900)) << "what follows a picture of the new place is new";
  }
  frames.seek();
  frames.sent(*packet);
  for (int i = 0; i < 32; ++i) EXPECT_TRUE(isStale(i));
  EXPECT_FALSE(isStale(32)) << "no decoder held so many: its stamps are its own";
  frames.seek();
  packet->dts = packet->pts = AV_NOPTS_VALUE;
  frames.sent(*packet);
  EXPECT_FALSE(isStale(7)) << "nothing is known of what was sent";
}

TEST(SoundClock, StaysBetweenWhatIsHeardAndWhatIsWritten) {
  const SoundClock::Time t0{milliseconds(1000)};
  SoundClock clock;
  clock.wrote(0, 600'000, 450'000, t0);
  for (const auto& [afterMs, heardUs] :
       {std::pair{-20, 150'000}, {100, 250'000}, {450, 600'000}, {900, 600'000}})
    EXPECT_EQ(clock.heardUs(t0 + milliseconds(afterMs)), heardUs) << afterMs;
}

}  // namespace
}  // namespace tavek

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <optional>
#include <utility>

#include "base/guarded.h"
#include "base/process_flags.h"
#include "player/media_queue.h"
#include "player/sound_clock.h"

namespace tavek {

/// A place in the file at which reading goes on.
struct SeekRequest {
  std::int64_t positionUs = 0;
  unsigned round = 0;
};

/// What the threads of one item share. Any thread may call any operation. Each seek starts a round; packets
/// and pictures carry the number of theirs, and one of an earlier round is dropped wherever it is met. In a
/// queue a null pointer stands for the end of the stream in its round.
class Exchange {
 public:
  PacketQueue picturePackets;
  PacketQueue soundPackets;
  FrameQueue pictures;
  SoundClock soundClock;
  Flag paused;
  Flag seekFailed;
  Flag anyDecoded;  ///< of either stream

  unsigned round() const { return round_; }
  bool anySeek() const { return round_ > 1; }
  /// All of the round before is dropped, and the reader goes on from there.
  void seek(std::int64_t positionUs);
  /// Sends the reader off from the start of the file, in the first round.
  void startReading();
  std::optional<SeekRequest> takeRequest() { return std::exchange(*request_.hold(), std::nullopt); }
  /// Waits at most 50 ms for one.
  std::optional<SeekRequest> waitForRequest();

  /// All sound of this round has been heard.
  void soundIsOver(unsigned round) { soundOver_ = round; }
  bool soundOver() const { return soundOver_ == round_; }

  /// The item is to end: every wait of its workers ends within 50 ms.
  void close();
  bool stopping() const { return closed_ || quitRequested || stopSignalled; }
  /// Set by close(); interrupts what FFmpeg does to the file.
  const Flag& closed() const { return closed_; }

  /// Keeps what a worker met, and closes.
  void fail(std::exception_ptr error);
  std::exception_ptr error() const { return *error_.hold(); }

 private:
  void post(SeekRequest request);

  Flag closed_;
  std::atomic<unsigned> round_{1};
  std::atomic<unsigned> soundOver_{0};
  Guarded<std::optional<SeekRequest>> request_;
  std::condition_variable requested_;
  Guarded<std::exception_ptr> error_;
};

}  // namespace tavek

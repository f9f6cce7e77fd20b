#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "base/process_flags.h"
#include "base/sound_mode.h"
#include "media/codec.h"
#include "media/conversion.h"
#include "media/demultiplexer.h"
#include "player/audio_clock.h"
#include "player/media_queue.h"
#include "player/picture_frame.h"
#include "sound/audio_output.h"
#include "state/stored.h"

namespace tavek {

/// One file's way from the disk to pictures and sound. The main thread owns it, starts it once, takes
/// pictures and asks for seeks; the workers in it read the file, decode, and write to the audio device. No
/// thread ever holds two locks.
class Pipeline {
 public:
  /// Opens the file and chooses decoders; throws what that throws. A sound side that cannot be built is left
  /// out without a word, and the item plays silently.
  Pipeline(std::string path, std::optional<std::string> language, SoundMode soundMode, const Stored& stored);
  ~Pipeline();
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  // Main thread only.
  void start();
  /// The next picture of the present position; blocks. False at the end of the stream.
  bool popPicture(PicturePtr& picture);
  /// The same without waiting.
  bool tryPopPicture(PicturePtr& picture);
  /// From now on no picture or sound of the old position comes; the reading thread does the rest.
  void requestSeek(std::int64_t positionUs);
  /// Closes all queues, so that every worker ends.
  void close();
  /// Joins the workers in the order in which they were started, and gives the last error that one of them
  /// met.
  std::exception_ptr join();

  const Demultiplexer& demultiplexer() const { return demux_; }
  /// No picture decoder in this item: the pictures are black ones.
  bool audioOnly() const { return video_.codec == nullptr; }
  bool seekDebug() const { return seekDebug_; }
  /// Null for an item that plays silently.
  AudioOutput* audioOutput() { return audioOutput_.get(); }
  AudioClock& audioClock() { return audioClock_; }

  // Set by the main thread, polled by the workers.
  Flag paused;
  Flag pausedForPosters;

 private:
  /// Packets of one stream and their decoder, which is null where the stream is not played.
  struct Stream {
    PacketQueue packets;
    std::unique_ptr<Codec> codec;
    std::mutex decoderLock;  ///< held around each call of the codec, so that a seek can flush in between
    int index = -1;
    AVRational timeBase{0, 1};
  };

  void openSound(SoundMode soundMode);
  void startWorker(void (Pipeline::*body)());
  void clearQueues();
  static void flush(Stream& stream);

  // The reading thread.
  void demuxThread();
  void applySeek(std::int64_t positionUs);
  bool readOne();
  // The decoding threads.
  void videoThread();
  void audioThread();
  template <typename Handle>
  bool decode(Stream& stream, const AVPacket* packet, unsigned round, AVFrame* scratch, const Handle& handle);
  template <typename Handle>
  void drain(Stream& stream, AVFrame* scratch, const Handle& handle);
  bool publishFrame(AVFrame* frame, unsigned round);
  PicturePtr toPicture(AVFrame* frame);
  AVFrame* softwareFrame(AVFrame* frame);
  bool playAudioFrame(AVFrame* frame, unsigned round);
  // The thread of black pictures.
  void audioFillerThread();

  /// The program or this item is to end.
  bool stopping() const { return closed_ || quitRequested || stopSignalled; }
  bool held() const { return paused || pausedForPosters; }
  /// Between the start of a seek, when the queues are cleared, and its request.
  bool seekComes() const { return readRound_ != seekRound_; }

  const std::string path_;
  const Stored stored_;
  const bool seekDebug_;  ///< TAVEK_SEEK_DEBUG is "1"
  Flag closedByForce_;    ///< ends a read that waits
  Demultiplexer demux_;   ///< used by the reading thread; its constant facts by any
  Stream video_;
  Stream audio_;
  MediaQueue<Tagged<PicturePtr>> frames_;
  std::unique_ptr<AudioOutput> audioOutput_;
  AudioClock audioClock_;
  Flag audioFinished_;
  Flag closed_;

  struct SeekRequest {
    std::int64_t positionUs;
    unsigned round;
  };
  std::mutex seekLock_;  ///< guards seekRequest_
  std::optional<SeekRequest> seekRequest_;
  std::atomic<unsigned> seekRound_{0};

  // Video thread only.
  std::unique_ptr<Conversion> conversion_;
  ffmpeg::FramePtr transferFrame_;
  // Reading thread only: the seek that its packets come after.
  unsigned readRound_ = 0;
  // Audio thread only: the seek after which the device got its last sound.
  unsigned heardRound_ = 0;

  std::vector<std::thread> threads_;
  std::mutex errorLock_;  ///< guards workerError_
  std::exception_ptr workerError_;
};

}  // namespace tavek

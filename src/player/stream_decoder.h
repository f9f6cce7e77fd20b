#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>

#include "media/codec.h"
#include "player/damage.h"
#include "player/exchange.h"

namespace tavek {

/// How the time stamps of a stream become positions in the item.
struct StreamTime {
  AVRational timeBase{0, 1};
  std::int64_t zeroUs = 0;  ///< the position of stamp 0
};

/// A decoding thread: it takes the packets of one stream, decodes them round by round, and hands on what
/// comes out. All of it is that thread's, once it runs.
class StreamDecoder {
 public:
  StreamDecoder(std::unique_ptr<Codec> codec, StreamTime time, PacketQueue& packets, Exchange& exchange);
  virtual ~StreamDecoder() = default;
  StreamDecoder(const StreamDecoder&) = delete;
  StreamDecoder& operator=(const StreamDecoder&) = delete;

  /// Until the item is over.
  void run();

 protected:
  /// What follows comes after a seek; the decoder is flushed already.
  virtual void seek() = 0;
  virtual void sending(const AVPacket&) {}
  /// The next frame; it may be emptied.
  virtual void takeFrame(AVFrame& frame) = 0;
  /// Nothing comes any more, unless somebody seeks.
  virtual void endRound() = 0;

  /// The item goes on, and nobody has sought since this round began.
  bool current() const { return !exchange_.stopping() && round_ == exchange_.round(); }
  /// That of the frame before where nothing in this one tells.
  std::int64_t positionUs(const AVFrame& frame);

  Exchange& exchange_;
  const std::unique_ptr<Codec> codec_;
  unsigned round_ = 0;

 private:
  void enterRound(unsigned round);
  void decode(const AVPacket* packet);
  bool receiveAll(const AVPacket* packet);
  void noteDamage(const AVPacket* packet);
  std::int64_t place(std::initializer_list<std::int64_t> stamps);

  const StreamTime time_;
  std::int64_t lastPlaceUs_ = 0;
  PacketQueue& packets_;
  const ffmpeg::FramePtr frame_;
  Damage damage_;
};

}  // namespace tavek

#pragma once

#include <atomic>
#include <memory>

#include "player/exchange.h"
#include "player/picture_decoder.h"
#include "player/play.h"
#include "player/reader.h"
#include "player/sound_decoder.h"

namespace tavek {

/// The workers of one item and all that they touch. It lives for as long as one of their threads does, which
/// with a dead disk is longer than its Play.
class Engine {
 public:
  Engine(PlayItem item, PlayServices services) : item_(std::move(item)), services_(std::move(services)) {}

  // The threads' bodies; none throws.
  void openAndRead();
  void decodePictures();
  void decodeSound();

  /// Ends the item with the exception that is being handled.
  void fail();
  Play::Opening opening() const { return opening_; }
  Exchange& exchange() { return exchange_; }

  // These stand once it is open.
  const MovieInfo& movieInfo() const { return movieInfo_; }
  bool hasPictures() const { return streams_.pictures >= 0; }
  /// The only picture is a cover.
  bool hasStill() const { return streams_.pictureIsStill; }
  /// Null for an item that plays silently.
  AudioOutput* sound() { return soundDecoder_ ? &soundDecoder_->output() : nullptr; }
  /// Lets the device play what it holds. The sound's thread has ended.
  void endSound() { soundDecoder_.reset(); }

 private:
  void open();
  void openSound();
  StreamTime timeOf(AVRational timeBase) const;
  template <typename Body>
  void guard(const Body& body);

  const PlayItem item_;
  const PlayServices services_;
  Exchange exchange_;
  std::atomic<Play::Opening> opening_{Play::Opening::Underway};
  MovieInfo movieInfo_;
  Reader::Streams streams_;
  std::unique_ptr<Reader> reader_;
  std::unique_ptr<PictureDecoder> pictureDecoder_;
  std::unique_ptr<SoundDecoder> soundDecoder_;
};

}  // namespace tavek

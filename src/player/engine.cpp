#include "player/engine.h"

#include <exception>
#include <utility>

#include "library/file_types.h"
#include "player/black_picture.h"

namespace tavek {

/// Nothing that a file holds may end more than its item.
template <typename Body>
void Engine::guard(const Body& body) {
  try {
    body();
  } catch (...) {
    fail();
  }
}

void Engine::fail() {
  exchange_.fail(std::current_exception());
  if (opening_ == Play::Opening::Underway) opening_ = Play::Opening::Failed;
}

void Engine::openAndRead() {
  guard([&] { open(); });
  if (opening_ == Play::Opening::Open) guard([&] { reader_->run(streams_); });
  // Here, since closing a file on a dead disk takes its time as well.
  reader_.reset();
}

void Engine::open() {
  reader_ = std::make_unique<Reader>(item_, exchange_);
  const Demultiplexer& file = reader_->file();
  movieInfo_ = file.movieInfo();
  // In an audio file the stream of pictures is the cover, which is no film.
  if (isAudioFile(item_.path)) {
    blackPicture();
  } else {
    pictureDecoder_ = std::make_unique<PictureDecoder>(std::make_unique<Codec>(file.videoParameters()),
                                                       timeOf(file.videoTimeBase()), exchange_);
    streams_.pictures = file.videoStreamIndex();
    streams_.pictureIsStill = file.pictureIsAttached();
  }
  if (file.audioParameters() != nullptr) openSound();
  opening_ = Play::Opening::Open;
}

StreamTime Engine::timeOf(AVRational timeBase) const {
  return {timeBase, reader_->file().positionUs(0, timeBase)};
}

/// A sound side that cannot be built is left out without a word.
void Engine::openSound() try {
  const Demultiplexer& file = reader_->file();
  auto codec = std::make_unique<Codec>(file.audioParameters());
  auto output = std::make_unique<AudioOutput>(file.audioParameters(), item_.path, item_.soundMode,
                                              services_.stored, services_.soundDevice, services_.clock);
  soundDecoder_ = std::make_unique<SoundDecoder>(std::move(codec), timeOf(file.audioTimeBase()),
                                                 std::move(output), services_.clock, exchange_);
  streams_.sound = file.audioStreamIndex();
} catch (const std::exception&) {
  // The item plays silently.
}

void Engine::decodePictures() {
  guard([&] { pictureDecoder_->run(); });
  pictureDecoder_.reset();
}

void Engine::decodeSound() {
  guard([&] { soundDecoder_->run(); });
}

}  // namespace tavek

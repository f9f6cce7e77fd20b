#include "player/pipeline.h"

#include <cstdlib>
#include <string_view>

#include "library/file_types.h"
#include "player/seek_rules.h"
#include "sound/alsa_device.h"

namespace tavek {
namespace {

bool seekDebugWanted() {
  const char* value = std::getenv("TAVEK_SEEK_DEBUG");
  return value != nullptr && std::string_view(value) == "1";
}

}  // namespace

Pipeline::Pipeline(std::string path, std::optional<std::string> language, SoundMode soundMode,
                   const Stored& stored)
    : path_(std::move(path)),
      stored_(stored),
      seekDebug_(seekDebugWanted()),
      demux_(path_, std::move(language), isAudioFile(path_) ? Pictures::Optional : Pictures::Needed,
             closedByForce_) {
  // In an audio file the stream of pictures is the cover, which is no film.
  if (!isAudioFile(path_)) {
    video_.codec = std::make_unique<Codec>(demux_.videoParameters());
    video_.index = demux_.videoStreamIndex();
    video_.timeBase = demux_.videoTimeBase();
  }
  if (demux_.audioParameters() != nullptr) openSound(soundMode);
}

void Pipeline::openSound(SoundMode soundMode) try {
  audio_.codec = std::make_unique<Codec>(demux_.audioParameters());
  audioOutput_ = std::make_unique<AudioOutput>(demux_.audioParameters(), path_, soundMode, stored_,
                                               alsaDeviceFactory(), steadyClock());
  audio_.index = demux_.audioStreamIndex();
  audio_.timeBase = demux_.audioTimeBase();
} catch (const std::exception&) {
  audio_.codec.reset();
}

Pipeline::~Pipeline() {
  close();
  join();
  // The device first: it plays what it still holds while nothing else is left to do.
  audioOutput_.reset();
}

void Pipeline::start() {
  startWorker(&Pipeline::demuxThread);
  if (video_.codec) startWorker(&Pipeline::videoThread);
  if (audio_.codec) startWorker(&Pipeline::audioThread);
  if (audioOnly()) startWorker(&Pipeline::audioFillerThread);
}

void Pipeline::startWorker(void (Pipeline::*body)()) {
  threads_.emplace_back([this, body] {
    try {
      (this->*body)();
    } catch (...) {
      {
        const std::lock_guard held(errorLock_);
        workerError_ = std::current_exception();
      }
      close();
    }
  });
}

bool Pipeline::popPicture(PicturePtr& picture) {
  Tagged<PicturePtr> next;
  while (frames_.pop(next)) {
    if (next.seekRound != seekRound_) continue;
    picture = std::move(next.item);
    return true;
  }
  return false;
}

bool Pipeline::tryPopPicture(PicturePtr& picture) {
  Tagged<PicturePtr> next;
  while (frames_.tryPop(next)) {
    if (next.seekRound != seekRound_) continue;
    picture = std::move(next.item);
    return true;
  }
  return false;
}

void Pipeline::requestSeek(std::int64_t positionUs) {
  // Only when all of the old is out of the way may the reading thread know: what it then brings must not be
  // cleared or flushed any more.
  const unsigned round = ++seekRound_;
  clearQueues();
  flush(video_);
  flush(audio_);
  const std::lock_guard held(seekLock_);
  seekRequest_ = {wrapPosition(positionUs, demux_.durationUs()), round};
}

void Pipeline::clearQueues() {
  video_.packets.clear();
  frames_.clear();
  audio_.packets.clear();
}

void Pipeline::flush(Stream& stream) {
  if (!stream.codec) return;
  const std::lock_guard held(stream.decoderLock);
  stream.codec->flush();
}

void Pipeline::close() {
  closed_ = true;
  closedByForce_ = true;
  frames_.close();
  video_.packets.close();
  audio_.packets.close();
  if (audioOutput_) audioOutput_->interrupt();
}

std::exception_ptr Pipeline::join() {
  for (std::thread& thread : threads_) thread.join();
  threads_.clear();
  const std::lock_guard held(errorLock_);
  return workerError_;
}

}  // namespace tavek

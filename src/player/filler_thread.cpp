#include <cstring>

#include "media/error.h"
#include "player/pipeline.h"
#include "player/playback_timer.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace tavek {
namespace {

PicturePtr blackPicture(std::int64_t ptsUs) {
  PicturePtr picture(ffmpeg::makeFrame().release());
  if (!picture) throw ffmpeg::Error("Failed to allocate audio filler AVFrame");
  picture->width = 1280;
  picture->height = 720;
  picture->format = AV_PIX_FMT_YUV420P;
  picture->sample_aspect_ratio = {1, 1};
  picture->pts = ptsUs;
  if (av_image_alloc(picture->data, picture->linesize, picture->width, picture->height, AV_PIX_FMT_YUV420P,
                     1) < 0) {
    throw ffmpeg::Error("Failed to allocate audio filler frame buffer");
  }
  constexpr std::size_t lumaSize = 1280 * 720;
  std::memset(picture->data[0], 0, lumaSize);
  std::memset(picture->data[1], 128, lumaSize / 4);
  std::memset(picture->data[2], 128, lumaSize / 4);
  return picture;
}

}  // namespace

/// An audio item has no pictures, but the run loop lives on them: black ones along the audio clock serve
/// both.
void Pipeline::audioFillerThread() {
  constexpr std::int64_t stepUs = 33333;
  std::int64_t fillerPts = 0;
  unsigned lastRound = seekRound_;
  while (!stopping()) {
    if (audioFinished_) {
      frames_.finish();
      return;
    }
    if (held()) {
      sleepMilliseconds(10);
      continue;
    }
    const unsigned round = seekRound_;
    const std::int64_t heard = audioClock_.heardUs(AudioClock::Time::clock::now());
    // After a seek back the pictures must not stay ahead of the sound.
    if (round != lastRound) fillerPts = 0;
    lastRound = round;
    fillerPts = heard > fillerPts ? heard : fillerPts + stepUs;
    Tagged<PicturePtr> picture{blackPicture(fillerPts), round};
    if (!frames_.push(picture)) {
      frames_.finish();
      return;
    }
    sleepMilliseconds(15);
  }
  frames_.close();
}

}  // namespace tavek

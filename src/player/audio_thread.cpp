#include "media/error.h"
#include "player/decode.h"
#include "player/frame_position.h"
#include "player/playback_timer.h"

namespace tavek {

void Pipeline::audioThread() {
  const ffmpeg::FramePtr scratch = ffmpeg::makeFrame();
  if (!scratch) throw ffmpeg::Error("Failed to allocate audio AVFrame");
  const auto play = [this](AVFrame* frame, unsigned round) { return playAudioFrame(frame, round); };
  bool held = false;
  while (!stopping()) {
    if (paused) {
      if (!held) audioOutput_->hold();
      held = true;
      sleepMilliseconds(10);
      continue;
    }
    if (std::exchange(held, false)) audioOutput_->resume();
    Tagged<ffmpeg::PacketPtr> packet;
    if (!audio_.packets.pop(packet)) {
      drain(audio_, scratch.get(), play);
      break;
    }
    decode(audio_, packet.item.get(), packet.seekRound, scratch.get(), play);
  }
  audio_.packets.close();
  audioFinished_ = true;
}

bool Pipeline::playAudioFrame(AVFrame* frame, unsigned round) {
  // The device still holds half a second of the old position; nobody wants to hear that after a seek.
  if (heardRound_ != round) audioOutput_->flush();
  heardRound_ = round;
  audioOutput_->write(frame);
  if (frame->sample_rate > 0 && round == seekRound_) {
    const std::int64_t lengthUs = std::int64_t{frame->nb_samples} * 1'000'000 / frame->sample_rate;
    const std::int64_t endUs = framePositionUs(*frame, audio_.timeBase) + lengthUs;
    audioClock_.wrote(endUs, audioOutput_->delayUs(), AudioClock::Time::clock::now());
  }
  av_frame_unref(frame);
  return !stopping();
}

}  // namespace tavek

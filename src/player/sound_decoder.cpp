#include "player/sound_decoder.h"

namespace tavek {

/// The device still holds half a second of the old place, which nobody wants to hear after a seek.
void SoundDecoder::beginRound() {
  output_->flush();
}

void SoundDecoder::takeFrame(AVFrame& frame) {
  output_->write(&frame);
  if (frame.sample_rate <= 0) return;
  const std::int64_t lengthUs = std::int64_t{frame.nb_samples} * 1'000'000 / frame.sample_rate;
  exchange_.soundClock.wrote(round_, positionUs(frame) + lengthUs, output_->delayUs(), clock_.now());
}

void SoundDecoder::endRound() {
  while (current() && output_->delayUs() > 0) {
  }
  exchange_.soundClock.silence(round_);
  exchange_.soundIsOver(round_);
}

}  // namespace tavek

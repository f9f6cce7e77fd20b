#include "player/sound_decoder.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace tavek {
namespace {

constexpr std::chrono::milliseconds step{10};

}  // namespace

/// The device still holds half a second of the old place, which nobody wants to hear after a seek.
void SoundDecoder::seek() {
  output_->flush();
}

void SoundDecoder::takeFrame(AVFrame& frame) {
  holdWhilePaused();
  if (!current()) return;
  output_->write(&frame);
  if (frame.sample_rate <= 0) return;
  const std::int64_t lengthUs = std::int64_t{frame.nb_samples} * 1'000'000 / frame.sample_rate;
  exchange_.soundClock.wrote(round_, positionUs(frame) + lengthUs, output_->delayUs(), clock_.now());
}

/// The device plays what it holds; then nobody hears anything.
void SoundDecoder::endRound() {
  const Clock::Time heardOut = clock_.now() + std::chrono::microseconds(output_->delayUs());
  while (current() && clock_.now() < heardOut) {
    holdWhilePaused();
    clock_.sleepUntil(std::min(heardOut, clock_.now() + step));
  }
  exchange_.soundClock.silence(round_);
  exchange_.soundIsOver(round_);
}

void SoundDecoder::holdWhilePaused() {
  if (exchange_.paused) output_->flush();
  while (exchange_.paused && current()) std::this_thread::sleep_for(step);
}

}  // namespace tavek

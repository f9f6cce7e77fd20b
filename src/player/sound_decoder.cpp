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
  waitWhilePaused();
  if (!current()) return;
  output_->write(&frame);
  if (!output_->heard()) {
    exchange_.soundClock.silence(round_);
  } else if (frame.sample_rate > 0) {
    const std::int64_t lengthUs = std::int64_t{frame.nb_samples} * 1'000'000 / frame.sample_rate;
    exchange_.soundClock.wrote(round_, positionUs(frame) + lengthUs, output_->delayUs(), clock_.now());
  }
}

/// The device plays what it holds; then nobody hears anything. Some devices never say that they are empty.
void SoundDecoder::endRound() {
  const auto emptyAt = [&] { return clock_.now() + std::chrono::microseconds(output_->delayUs()); };
  for (Clock::Time end = emptyAt(); current() && output_->heard() && clock_.now() < end;) {
    clock_.sleepUntil(std::min(end, clock_.now() + step));
    if (waitWhilePaused()) end = emptyAt();
  }
  exchange_.soundClock.silence(round_);
  if (current()) exchange_.soundIsOver(round_);
}

/// Without a device the sound must not go by in a pause. True if there was one.
bool SoundDecoder::waitWhilePaused() {
  if (!exchange_.paused) return false;
  while (exchange_.paused && current()) std::this_thread::sleep_for(step);
  return true;
}

}  // namespace tavek

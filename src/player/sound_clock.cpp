#include "player/sound_clock.h"

#include <algorithm>

namespace tavek {

void SoundClock::wrote(unsigned round, std::int64_t writtenUs, std::int64_t delayUs, Time now) {
  const auto state = state_.hold();
  if (round != state->round) return;
  state->heardUs = std::max<std::int64_t>(writtenUs - delayUs, 0);
  state->writtenUs = writtenUs;
  state->at = now;
}

void SoundClock::silence(unsigned round) {
  const auto state = state_.hold();
  if (round == state->round) state->heardUs = 0;
}

void SoundClock::seek(unsigned round) {
  const auto state = state_.hold();
  state->round = round;
  state->heardUs = 0;
}

void SoundClock::pause(Time now) {
  const auto state = state_.hold();
  state->heardUs = state->heardAt(now);
  state->paused = true;
}

void SoundClock::resume(Time now) {
  const auto state = state_.hold();
  state->at = now;
  state->paused = false;
}

std::int64_t SoundClock::heardUs(Time when) const {
  return state_.hold()->heardAt(when);
}

std::int64_t SoundClock::State::heardAt(Time when) const {
  if (heardUs <= 0 || paused) return std::max<std::int64_t>(heardUs, 0);
  const auto since = std::chrono::duration_cast<std::chrono::microseconds>(when - at).count();
  return std::clamp(heardUs + since, heardUs, std::max(heardUs, writtenUs));
}

}  // namespace tavek

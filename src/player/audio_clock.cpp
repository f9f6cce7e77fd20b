#include "player/audio_clock.h"

#include <algorithm>

namespace tavek {

void AudioClock::wrote(std::int64_t writtenUs, std::int64_t delayUs, Time now) {
  const std::lock_guard held(lock_);
  heardUs_ = std::max<std::int64_t>(writtenUs - delayUs, 0);
  writtenUs_ = writtenUs;
  at_ = now;
}

void AudioClock::set(std::int64_t positionUs) {
  const std::lock_guard held(lock_);
  heardUs_ = writtenUs_ = positionUs;
}

std::int64_t AudioClock::heardUs(Time when) const {
  const std::lock_guard held(lock_);
  if (heardUs_ <= 0) return 0;
  const auto since = std::chrono::duration_cast<std::chrono::microseconds>(when - at_).count();
  return std::clamp(heardUs_ + since, heardUs_, std::max(heardUs_, writtenUs_));
}

}  // namespace tavek

#include "player/playback_timer.h"

#include <algorithm>

namespace tavek {
namespace {

std::int64_t wholeMicroseconds(PlaybackTimer::Clock::duration span) {
  return std::chrono::duration_cast<std::chrono::microseconds>(span).count();
}

}  // namespace

std::int64_t PlaybackTimer::advance(Clock::time_point now, std::int64_t durationUs) {
  const auto duration = std::chrono::microseconds(durationUs);
  if (restarted_) {
    deadline_ = now + duration;
    restarted_ = false;
    return durationUs;
  }
  deadline_ += duration;
  const std::int64_t remaining = wholeMicroseconds(deadline_ - now);
  if (remaining >= 1) return remaining;
  if (-remaining > 4 * durationUs) reset(now);
  return 0;
}

std::int64_t PlaybackTimer::expectedSleepUs(Clock::time_point now, std::int64_t durationUs) const {
  if (restarted_) return durationUs;
  return std::max<std::int64_t>(wholeMicroseconds(deadline_ - now) + durationUs, 0);
}

}  // namespace tavek

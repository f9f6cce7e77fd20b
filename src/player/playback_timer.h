#pragma once

#include <chrono>
#include <cstdint>

namespace tavek {

/// The deadline timer of the pictures. Each wait adds to the deadline instead of to the present time, so that
/// up to four frame times of lateness are worked off; beyond that the timeline starts anew. Main thread only.
class PlaybackTimer {
 public:
  using Clock = std::chrono::steady_clock;

  /// How long to sleep until the next deadline, which moves on by the duration.
  std::int64_t advance(Clock::time_point now, std::int64_t durationUs);
  /// The same, leaving the deadline alone.
  std::int64_t expectedSleepUs(Clock::time_point now, std::int64_t durationUs) const;
  /// The next wait starts a new timeline.
  void reset(Clock::time_point now) {
    deadline_ = now;
    restarted_ = true;
  }

 private:
  Clock::time_point deadline_;
  bool restarted_ = true;
};

}  // namespace tavek

#pragma once

#include <chrono>
#include <cstdint>

namespace tavek {

/// Sleeps on through signals; 0 or less is a no-op.
void sleepMilliseconds(std::int64_t ms);
void sleepMicroseconds(std::int64_t us);

/// The deadline timer of the pictures. Each wait adds to the deadline instead of to the present time, so that
/// up to four frame times of lateness are worked off; beyond that the timeline starts anew. Main thread only.
class PlaybackTimer {
 public:
  using Clock = std::chrono::steady_clock;

  PlaybackTimer() { reset(Clock::now()); }

  /// The next wait starts a new timeline.
  void reset() { reset(Clock::now()); }
  /// Sleeps until the next deadline; 0 or less returns at once.
  void waitFor(std::int64_t durationUs);

  /// The same on a clock given as a value: how long waitFor has to sleep, moving the deadline on.
  std::int64_t advance(Clock::time_point now, std::int64_t durationUs);
  /// How long waitFor would sleep, leaving the deadline alone.
  std::int64_t expectedSleepUs(Clock::time_point now, std::int64_t durationUs) const;
  void reset(Clock::time_point now) {
    deadline_ = now;
    restarted_ = true;
  }

 private:
  Clock::time_point deadline_;
  bool restarted_ = true;
};

}  // namespace tavek

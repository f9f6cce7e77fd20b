#pragma once

#include <cstdint>
#include <optional>

#include "base/clock.h"
#include "player/pacing.h"
#include "player/playback_timer.h"
#include "player/sound_clock.h"

namespace tavek {

/// Gives each picture its time. The sound is the master; without it the pictures keep a time of their own.
/// Main thread only.
class Pacer {
 public:
  explicit Pacer(const Clock& clock) : clock_(clock) { timer_.reset(clock.now()); }

  /// The next picture is shown at once and starts the time anew.
  void seek();
  void resume();
  /// The pictures did not come, so their own time stood still.
  void starve() { ownTime_.reset(); }

  /// When the picture is to be shown; none if it is left out. `nextWaits`: the one behind it is there
  /// already.
  std::optional<Clock::Time> due(std::int64_t ptsUs, const SoundClock& sound, bool nextWaits);
  /// Learns how long it takes to bring a picture to the screen.
  void presented(Clock::Time begun);

 private:
  /// A picture and the time at which it was due.
  struct OwnTime {
    std::int64_t ptsUs;
    Clock::Time at;
  };

  std::int64_t behindUs(std::int64_t ptsUs, std::int64_t heardUs, Clock::Time now) const;

  const Clock& clock_;
  PlaybackTimer timer_;
  Pacing pacing_;
  std::int64_t presentUs_ = 0;  ///< running mean
  bool leftOut_ = false;        ///< the last picture
  std::optional<OwnTime> ownTime_;
};

}  // namespace tavek

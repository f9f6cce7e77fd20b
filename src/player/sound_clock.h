#pragma once

#include <cstdint>

#include "base/clock.h"
#include "base/guarded.h"

namespace tavek {

/// What is heard right now, as a position in the item: the master clock of the pictures. It is known only
/// while sound is heard. The sound decoder sets it after each block, the main thread stops it for a pause and
/// starts it anew after a seek; any thread may ask. Positions in microseconds; 0 means that nobody knows.
class SoundClock {
 public:
  using Time = Clock::Time;

  /// Sound up to `writtenUs` is with the device, which still holds `delayUs` of it. The clock runs on by
  /// itself until the end of what was written, since a device takes new sound in coarse steps and a picture
  /// must not wait for the next one. Nothing happens in another round than that of the last seek.
  void wrote(unsigned round, std::int64_t writtenUs, std::int64_t delayUs, Time now);
  /// Nothing of this round is heard any more.
  void silence(unsigned round);
  /// Unknown until sound of this round is written.
  void seek(unsigned round);
  void pause(Time now);
  void resume(Time now);

  std::int64_t heardUs(Time when) const;

 private:
  struct State {
    unsigned round = 0;
    std::int64_t heardUs = 0;
    std::int64_t writtenUs = 0;
    Time at{};
    bool paused = false;

    std::int64_t heardAt(Time when) const;
  };
  Guarded<State> state_;
};

}  // namespace tavek

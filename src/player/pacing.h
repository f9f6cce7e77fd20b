#pragma once

#include <cstdint>

namespace tavek {

/// What the pacing of pictures remembers from one picture to the next; owned by the run loop. Times in
/// microseconds.
struct Pacing {
  bool resetClock = false;  ///< playback has just resumed
  bool firstFrame = true;   ///< nothing shown yet, or a seek came in between
  std::int64_t lastPositionUs = 0;
  std::int64_t frameIntervalUs = 0;  ///< running mean of the pictures' distance
};

struct PaceStep {
  bool resetTimer = false;
  std::int64_t waitUs = 0;  ///< 0: present at once
};

/// How long the picture at `ptsUs` has to wait. `audioUs` is what is heard when the picture reaches the
/// screen; 0 or less means that nobody knows, and the pictures keep their own pace. No picture is ever
/// dropped: a wait of 8 to 50 ms is the only correction.
PaceStep pace(Pacing& pacing, std::int64_t ptsUs, std::int64_t audioUs);

/// The interval part of pace() on its own, for who has to foresee the wait.
std::int64_t plainWaitUs(const Pacing& pacing);

}  // namespace tavek

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
/// screen; 0 or less means that nobody knows, and the pictures keep their own pace. A correction makes the
/// wait no shorter than 8 ms and no longer than 50 ms, or than 20 ms more than a slow stream's own interval.
PaceStep pace(Pacing& pacing, std::int64_t ptsUs, std::int64_t audioUs);

/// The interval part of pace() on its own, for who has to foresee the wait.
std::int64_t plainWaitUs(const Pacing& pacing);

/// No picture waits less, but the first.
inline constexpr std::int64_t shortestWaitUs = 8000;

/// Two pictures so far apart follow each other; beyond that the file's time jumps.
bool isInterval(std::int64_t deltaUs);

/// A picture is left out if it comes so late that nobody misses it, and if the next one is there already: one
/// between two that are shown, or as many as it takes when they are far behind. A distance of many seconds is
/// no lateness: sound and pictures of such a file count from different starts.
bool leavesOut(std::int64_t behindUs, bool nextWaits, bool leftOutBefore);

}  // namespace tavek

#include "player/pacing.h"

#include <algorithm>
#include <cstdlib>

namespace tavek {
namespace {

constexpr std::int64_t defaultIntervalUs = 16667;
constexpr std::int64_t bandUs = 8000;
constexpr std::int64_t maxCorrectionUs = 20000;

std::int64_t longestWaitUs(std::int64_t baseUs) {
  constexpr std::int64_t usual = 50000;
  return baseUs < usual ? usual : baseUs + maxCorrectionUs;
}

bool outOfBand(std::int64_t ptsUs, std::int64_t audioUs) {
  return audioUs > 0 && std::abs(ptsUs - audioUs) > bandUs;
}

std::int64_t correctedWait(std::int64_t baseUs, std::int64_t ptsUs, std::int64_t audioUs) {
  const std::int64_t correction = std::clamp((ptsUs - audioUs) / 4, -maxCorrectionUs, maxCorrectionUs);
  return std::clamp(baseUs + correction, shortestWaitUs, longestWaitUs(baseUs));
}

void learnInterval(Pacing& pacing, std::int64_t deltaUs) {
  std::int64_t& interval = pacing.frameIntervalUs;
  if (isInterval(deltaUs)) {
    interval = interval == 0 ? deltaUs : (3 * interval + deltaUs) / 4;
  } else if (interval <= 0) {
    interval = defaultIntervalUs;
  }
}

}  // namespace

bool isInterval(std::int64_t deltaUs) {
  return deltaUs >= 1 && deltaUs <= 1'000'000;
}

std::int64_t plainWaitUs(const Pacing& pacing) {
  return std::max(pacing.frameIntervalUs, shortestWaitUs);
}

bool leavesOut(std::int64_t behindUs, bool nextWaits, bool leftOutBefore) {
  constexpr std::int64_t twoTimelines = 10'000'000;
  return nextWaits && behindUs > (leftOutBefore ? 500'000 : 80'000) && behindUs < twoTimelines;
}

PaceStep pace(Pacing& pacing, std::int64_t ptsUs, std::int64_t audioUs) {
  PaceStep step;
  if (pacing.resetClock) {
    pacing.resetClock = pacing.firstFrame = false;
    if (pacing.frameIntervalUs <= 0) pacing.frameIntervalUs = defaultIntervalUs;
    step.resetTimer = true;
  } else if (pacing.firstFrame) {
    pacing.firstFrame = false;
    pacing.lastPositionUs = ptsUs;
    step.resetTimer = true;
    if (outOfBand(ptsUs, audioUs)) step.waitUs = correctedWait(0, ptsUs, audioUs);
    return step;
  } else {
    learnInterval(pacing, ptsUs - pacing.lastPositionUs);
  }
  pacing.lastPositionUs = ptsUs;
  const std::int64_t wait = plainWaitUs(pacing);
  step.waitUs = outOfBand(ptsUs, audioUs) ? correctedWait(wait, ptsUs, audioUs) : wait;
  return step;
}

}  // namespace tavek

#include "player/pacing.h"

#include <algorithm>
#include <cstdlib>

namespace tavek {
namespace {

constexpr std::int64_t defaultIntervalUs = 16667;
constexpr std::int64_t bandUs = 8000;
constexpr std::int64_t maxCorrectionUs = 20000;

std::int64_t clampWait(std::int64_t us) {
  return std::clamp<std::int64_t>(us, 8000, 50000);
}

bool outOfBand(std::int64_t ptsUs, std::int64_t audioUs) {
  return audioUs > 0 && std::abs(ptsUs - audioUs) > bandUs;
}

std::int64_t correctedWait(std::int64_t baseUs, std::int64_t ptsUs, std::int64_t audioUs) {
  return clampWait(baseUs + std::clamp((ptsUs - audioUs) / 4, -maxCorrectionUs, maxCorrectionUs));
}

void learnInterval(Pacing& pacing, std::int64_t deltaUs) {
  std::int64_t& interval = pacing.frameIntervalUs;
  if (deltaUs >= 1 && deltaUs <= 1'000'000) {
    interval = interval == 0 ? deltaUs : (3 * interval + deltaUs) / 4;
  } else if (interval <= 0) {
    interval = defaultIntervalUs;
  }
}

}  // namespace

std::int64_t plainWaitUs(const Pacing& pacing) {
  return clampWait(pacing.frameIntervalUs);
}

PaceStep pace(Pacing& pacing, std::int64_t ptsUs, std::int64_t audioUs) {
  PaceStep step;
  if (pacing.resetClock) {
    pacing.resetClock = false;
    pacing.frameIntervalUs = defaultIntervalUs;
    step.resetTimer = true;
  } else if (pacing.firstFrame) {
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

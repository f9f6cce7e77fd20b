#include "player/pacer.h"

#include <algorithm>

namespace tavek {
namespace {

using std::chrono::microseconds;

std::int64_t wholeMicroseconds(Clock::Time::duration span) {
  return std::chrono::duration_cast<microseconds>(span).count();
}

}  // namespace

void Pacer::seek() {
  timer_.reset(clock_.now());
  pacing_ = {};
  ownTime_.reset();
}

void Pacer::resume() {
  timer_.reset(clock_.now());
  pacing_.resetClock = true;
  ownTime_.reset();
}

/// The picture is judged by the sound that will be heard when it is on the screen, not by that of the moment
/// at which its turn is worked out, which is a whole picture's time earlier.
std::optional<Clock::Time> Pacer::due(std::int64_t ptsUs, const SoundClock& sound, bool nextWaits) {
  const Clock::Time now = clock_.now();
  const std::int64_t heardUs = sound.heardUs(now);
  if (!isInterval(ptsUs - pacing_.lastPositionUs)) ownTime_.reset();
  if (leavesOut(behindUs(ptsUs, heardUs, now), nextWaits, leftOut_)) {
    pace(pacing_, ptsUs, 0);
    leftOut_ = true;
    return {};
  }
  leftOut_ = false;
  const bool restarts = pacing_.firstFrame || pacing_.resetClock;
  const std::int64_t sleepUs = restarts ? 0 : timer_.expectedSleepUs(now, plainWaitUs(pacing_));
  const PaceStep step = pace(pacing_, ptsUs, heardUs > 0 ? heardUs + sleepUs + presentUs_ : 0);
  if (step.resetTimer) timer_.reset(now);
  const Clock::Time due = now + microseconds(step.waitUs > 0 ? timer_.advance(now, step.waitUs) : 0);
  if (heardUs > 0) {
    ownTime_.reset();
  } else if (!ownTime_) {
    ownTime_ = {ptsUs, due};
  }
  return due;
}

std::int64_t Pacer::behindUs(std::int64_t ptsUs, std::int64_t heardUs, Clock::Time now) const {
  if (pacing_.firstFrame) return 0;
  if (heardUs > 0) return heardUs + shortestWaitUs + presentUs_ - ptsUs;
  return ownTime_ ? wholeMicroseconds(now - ownTime_->at) - (ptsUs - ownTime_->ptsUs) : 0;
}

void Pacer::presented(Clock::Time begun) {
  const std::int64_t took = wholeMicroseconds(clock_.now() - begun);
  presentUs_ = presentUs_ == 0 ? took : (7 * presentUs_ + took) / 8;
}

}  // namespace tavek

#include "viewing/held_volume.h"

#include <algorithm>
#include <cmath>

#include "sound/audio_output.h"

namespace tavek {

void HeldVolume::press(double stepDb, AudioOutput* output, Clock::Time now) {
  stepDb_ = stepDb;
  step(output, now);
}

void HeldVolume::release(const AudioOutput* output) {
  stepDb_ = 0;
  if (output != nullptr) output->storeVolume();
}

bool HeldVolume::repeat(AudioOutput* output, Clock::Time now) {
  if (stepDb_ == 0 || now - lastStepAt_ < std::chrono::milliseconds(150)) return false;
  step(output, now);
  return true;
}

void HeldVolume::step(AudioOutput* output, Clock::Time now) {
  if (output != nullptr) output->adjustVolume(stepDb_);
  lastStepAt_ = now;
}

int volumePercent(double volumeDb, double ceilingDb) {
  // A ceiling at the bottom of the range would divide by nothing.
  const double range = std::max(ceilingDb + 60.0, 0.1);
  return static_cast<int>(std::clamp(std::lround((volumeDb + 60.0) / range * 100.0), 0L, 100L));
}

}  // namespace tavek

#pragma once

#include "base/clock.h"

namespace tavek {

class AudioOutput;

/// The volume key that is held, with its steps: one at the press, then one each 150 ms.
class HeldVolume {
 public:
  /// One step up or down in dB, which goes on until release().
  void press(double stepDb, AudioOutput* output, Clock::Time now);
  void release(const AudioOutput* output);
  /// Once per pass; true if a step was made.
  bool repeat(AudioOutput* output, Clock::Time now);

 private:
  void step(AudioOutput* output, Clock::Time now);

  double stepDb_ = 0;  ///< 0: no key is held
  Clock::Time lastStepAt_;
};

/// How far the volume bar is filled: where the volume stands between -60 dB and its ceiling, 0 to 100.
int volumePercent(double volumeDb, double ceilingDb);

}  // namespace tavek

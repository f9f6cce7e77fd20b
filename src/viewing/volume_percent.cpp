#include "viewing/volume_percent.h"

#include <algorithm>
#include <cmath>

namespace tavek {

int volumePercent(double volumeDb, double ceilingDb) {
  // A ceiling at the bottom of the range would divide by nothing.
  const double range = std::max(ceilingDb + 60.0, 0.1);
  return static_cast<int>(std::clamp(std::lround((volumeDb + 60.0) / range * 100.0), 0L, 100L));
}

}  // namespace tavek

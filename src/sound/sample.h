#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tavek {

/// The 16-bit sample nearest to a computed value; what is too loud is clipped.
inline std::int16_t toSample(double value) {
  return static_cast<std::int16_t>(std::clamp(std::lround(value), -32768L, 32767L));
}

}  // namespace tavek

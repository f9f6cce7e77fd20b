#pragma once

#include <cstdint>

namespace tavek {

/// How many channels the viewer wants; the numbers are the persisted ones.
enum class SoundMode : std::int32_t {
  Auto = 0,      ///< as the source has them, if device and sink agree to it
  Stereo = 1,    ///< always two
  Surround = 2,  ///< as the source has them, up to six
};

}  // namespace tavek

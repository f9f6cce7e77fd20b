#pragma once

#include <cstdint>

namespace tavek {

/// How the picture is turned on the screen; menus and overlays are never turned.
enum class Orientation : std::int32_t {
  OrientationAuto = 0,
  OrientationLandscape = 1,
  OrientationPortrait = 2,
  Orientation0 = 3,
  Orientation90 = 4,
  Orientation180 = 5,
  Orientation270 = 6,
};

}  // namespace tavek

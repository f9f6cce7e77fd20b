#pragma once

#include <array>
#include <cstdint>

#include "base/picture_colours.h"

namespace tavek {

/// A borrowed picture in planar YUV 4:2:0: rows from top to bottom, pitches in bytes.
struct PictureView {
  std::array<const std::uint8_t*, 3> planes{};
  std::array<int, 3> pitches{};
  int width = 0;
  int height = 0;
  /// Tells pictures apart, so that one that stands is brought to the screen's memory once; 0 is always new.
  std::uint64_t serial = 0;
  PictureColours colours = PictureColours::Bt601;
  double sampleAspect = 1.0;  ///< width of a sample over its height; 0 or less counts as 1
};

}  // namespace tavek

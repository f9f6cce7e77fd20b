#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace tavek {

/// Brings the samples of a picture in the PQ transfer curve (SMPTE ST 2084, ten bits, limited range) to those
/// of a screen (BT.1886, eight bits, limited range): the light by the extended operator of Reinhard et al.
/// (2002), with 100 cd/m2 as 1 and 1000 cd/m2 as white, the colour differences by a gain.
struct ToneCurve {
  static constexpr std::size_t levels = 1 << 10;
  using Table = std::array<std::uint8_t, levels>;
  Table luma;
  Table chroma;
};

/// Made once.
const ToneCurve& toneCurve();

}  // namespace tavek

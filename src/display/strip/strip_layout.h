#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <span>
#include <string>

#include <SDL.h>

#include "display/strip/strip_state.h"

/// Where the posters of the strip lie, and what its labels say. Pixels, and milliseconds of the
/// display's clock.
namespace tavek {

inline constexpr std::size_t postersOnScreen = 11;
inline constexpr int posterHeight = 240;
inline constexpr int stripHeight = 324;

/// The first poster drawn, so that the selection stands in the middle slot away from the ends of the list.
std::size_t stripScrollFor(int selected, std::size_t count);

/// How far the strip is up, 0 to 1.
double stripReveal(const StripState& strip, Uint64 nowMs);
/// Its upper edge.
double stripTop(int windowHeight, double reveal);

struct StripSlot {
  std::size_t index;  ///< in the list that was given
  SDL_Rect rect;
};

struct StripLayout {
  std::array<StripSlot, postersOnScreen> slots{};
  std::size_t count = 0;
};

/// The posters of the window, by their widths at posterHeight. One of width 0 has no slot; `selected` is an
/// index among them, or -1.
StripLayout layoutStrip(std::span<const int> widths, int selected, int windowWidth, double top);

/// What stands above the selected poster of a series room; nothing at the level of the series.
std::string stripLabel(int seriesDepth, const std::filesystem::path& poster);

}  // namespace tavek

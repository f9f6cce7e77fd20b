#pragma once

#include <cstdint>

#include <SDL.h>

namespace tavek {

/// The state of an overlay that fades in and out; `startedAt` is in milliseconds of the display's clock, 0 at
/// rest.
struct FadePair {
  bool visible = false;
  Uint64 startedAt = 0;
};

inline constexpr Uint64 fadeMs = 500;

/// Moves the pair towards the target and returns the strength to draw in this frame, 0 to 1. A change of the
/// target only starts the fade: the frame that sees it still draws what was there before.
double advanceFade(FadePair& pair, bool target, Uint64 nowMs);

/// The alpha byte at a strength, of an overlay whose full alpha is `full`.
std::uint8_t fadedAlpha(double strength, int full = 255);

}  // namespace tavek

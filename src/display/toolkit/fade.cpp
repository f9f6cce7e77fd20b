#include "display/toolkit/fade.h"

#include <algorithm>

namespace tavek {

double advanceFade(FadePair& pair, bool target, Uint64 nowMs) {
  if (target != pair.visible) {
    pair = {target, nowMs};
    return target ? 0.0 : 1.0;
  }
  if (!target && pair.startedAt == 0) return 0.0;
  const Uint64 elapsed = nowMs > pair.startedAt ? nowMs - pair.startedAt : 0;
  const double progress = std::min(1.0, static_cast<double>(elapsed) / static_cast<double>(fadeMs));
  if (target) return progress;
  if (progress >= 1.0) pair.startedAt = 0;
  return 1.0 - progress;
}

std::uint8_t fadedAlpha(double strength, int full) {
  return static_cast<std::uint8_t>(std::clamp(static_cast<int>(strength * full), 0, 255));
}

}  // namespace tavek

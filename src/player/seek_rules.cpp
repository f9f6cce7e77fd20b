#include "player/seek_rules.h"

#include <algorithm>

namespace tavek {

std::int64_t seekStepUs(std::int64_t heldMs) {
  constexpr std::int64_t tenSecondsUs = 10'000'000;
  return std::min<std::int64_t>(tenSecondsUs + tenSecondsUs * (heldMs / 1000), 60'000'000);
}

std::int64_t wrapPosition(std::int64_t positionUs, std::int64_t durationUs) {
  return positionUs < 0 || (durationUs > 0 && positionUs > durationUs) ? 0 : positionUs;
}

}  // namespace tavek

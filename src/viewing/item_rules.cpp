#include "viewing/item_rules.h"

#include <algorithm>

namespace tavek {
namespace {

constexpr std::int64_t secondUs = 1'000'000;

bool inLastSecond(std::int64_t positionUs, std::int64_t durationUs) {
  return positionUs >= durationUs - secondUs;
}

}  // namespace

ResumeStep resumeStep(bool isAvi, std::optional<std::int64_t> storedUs, std::int64_t durationUs) {
  if (storedUs.value_or(0) <= 0) return {};
  if (isAvi || durationUs < 1 || inLastSecond(*storedUs, durationUs))
    return {.seekUs = {}, .dropStored = true};
  return {.seekUs = storedUs, .dropStored = false};
}

std::int64_t savedPositionUs(std::int64_t lastPositionUs, std::int64_t heardUs) {
  return lastPositionUs > 0 ? lastPositionUs : std::max<std::int64_t>(heardUs, 0);
}

bool countsAsWatched(std::int64_t lastPositionUs, std::int64_t durationUs) {
  return durationUs > 0 && static_cast<std::int64_t>(static_cast<double>(durationUs) * 0.9) <= lastPositionUs;
}

std::optional<std::int64_t> endPositionUs(bool isAvi, std::int64_t positionUs, std::int64_t durationUs) {
  if (isAvi) return {};
  return durationUs > 0 && inLastSecond(positionUs, durationUs) ? 0 : positionUs;
}

std::int64_t boundaryForRate(double framesPerSecond) {
  if (!(framesPerSecond > 0)) return 500'000;
  const double span = static_cast<double>(secondUs) / framesPerSecond * 24;
  return static_cast<std::int64_t>(std::clamp(span, 250'000.0, 1'500'000.0));
}

}  // namespace tavek

#pragma once

#include <cstdint>

/// How far a seek key jumps, as plain rules. Positions in microseconds, times in milliseconds.
namespace tavek {

/// A key repeat that follows the last jump this closely is dropped.
inline constexpr std::int64_t seekRepeatGateMs = 30;
/// So long after the last jump, with no code from the keys, a seek counts as released.
inline constexpr std::int64_t seekReleaseMs = 250;

/// The jump of a key that has been held for `heldMs`: ten seconds more for each whole second, up to a minute.
std::int64_t seekStepUs(std::int64_t heldMs);
/// A position before the start or behind a known end is the start.
std::int64_t wrapPosition(std::int64_t positionUs, std::int64_t durationUs);

}  // namespace tavek

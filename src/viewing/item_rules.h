#pragma once

#include <cstdint>
#include <optional>

/// What an item does with its stored position, as plain rules. Times in microseconds; a duration of 0 is
/// unknown.
namespace tavek {

/// What becomes of the stored position when an item opens.
struct ResumeStep {
  std::optional<std::int64_t> seekUs;  ///< start here
  bool dropStored = false;             ///< the stored value becomes 0
};
ResumeStep resumeStep(bool isAvi, std::optional<std::int64_t> storedUs, std::int64_t durationUs);

/// The position to keep when an item is left: the last picture's, else what was heard.
std::int64_t savedPositionUs(std::int64_t lastPositionUs, std::int64_t heardUs);

/// At least nine tenths were played.
bool countsAsWatched(std::int64_t lastPositionUs, std::int64_t durationUs);
/// What to store at the end of an item: nothing for .avi, 0 within the last second.
std::optional<std::int64_t> endPositionUs(bool isAvi, std::int64_t positionUs, std::int64_t durationUs);

/// The playback boundary of an .avi item: 24 frame times within 0.25 to 1.5 s, 0.5 s without a frame rate.
std::int64_t boundaryForRate(double framesPerSecond);

}  // namespace tavek

#pragma once

#include <cstdint>
#include <string>

namespace tavek {

/// What the console's description of a movie needs; a name that is not known is empty, a number 0.
struct MovieInfo {
  std::string containerName;
  std::string containerLongName;
  std::string videoCodecName;
  int videoWidth = 0;
  int videoHeight = 0;
  double videoFramesPerSecond = 0;
  std::string audioCodecName;
  int audioChannels = 0;
  int audioSampleRate = 0;
  std::int64_t durationUs = 0;  ///< never negative
};

}  // namespace tavek

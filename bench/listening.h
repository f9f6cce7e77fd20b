// What the bench hears of songs and themes on the rig's sink.
#pragma once

#include <string>
#include <vector>

#include "bench/measure.h"

namespace tavek::bench {

/// Milliseconds.
struct Listening {
  std::vector<double> nextTrack;  ///< from a key to the next song's tone
  std::vector<double> gap;        ///< between two songs of an album
  std::vector<double> theme;      ///< from the key that opens the strip to the show's theme
  std::vector<double> silence;    ///< from the key that leaves a show to silence
};

/// Through an album of a library made under a folder.
void hearSongs(rig::Stage& stage, const Player& player, const std::string& folder, Listening& heard);
/// From show to show in the strip.
void hearThemes(rig::Stage& stage, const Player& player, const std::string& folder, Listening& heard);

}  // namespace tavek::bench

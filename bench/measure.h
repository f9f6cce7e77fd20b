// What the bench measures of one run of a player on the rig.
#pragma once

#include <string>
#include <vector>

#include "rig/stage.h"

namespace tavek::bench {

struct Player {
  std::string name;
  std::vector<std::string> command;
  rig::Environment environment;
};

/// A clip and the facts that a run is judged by.
struct Film {
  std::string name;
  rig::Clip clip;
  int picturesPerSecond;
};

/// Times in milliseconds. Sound against picture: positive when the sound comes late.
struct Playing {
  double cpuPerSecond = 0;
  double shownPercent = 0;
  double firstPicture = 0;
  double firstSound = 0;
  double soundMedian = 0;
  double soundEarliest = 0;
  double soundLatest = 0;
  double peakMegabytes = 0;
};

struct Seeking {
  double firstPicture = 0;
  double evenly = 0;
};

double median(std::vector<double> values);

/// Plays the whole film.
Playing playFilm(const rig::Stage& stage, const Player& player, const Film& film, const std::string& file);

/// Presses the seek key a few times in a film with a key frame each 10 s; one result per key press.
std::vector<Seeking> seekInFilm(rig::Stage& stage, const Player& player, const Film& film,
                                const std::string& file);

/// From exec to the first sign of the home screen over a library, and from a key to its effect there and on
/// the strip.
struct Browsing {
  double firstHome = 0;
  double userKey = 0;
  double stripKey = 0;
};
Browsing browse(rig::Stage& stage, const Player& player, const std::string& library);

/// CPU seconds per second of film that decoding alone takes.
double decodingFloor(const std::string& file, double seconds);

}  // namespace tavek::bench

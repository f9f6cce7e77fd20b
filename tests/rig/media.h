// Media files for tests, made with the ffmpeg program and kept in the build tree for the next run.
#pragma once

#include <filesystem>

namespace tavek::rig {

/// Pictures with their number as a strip of cells over the upper sixth, above a body that is white for the
/// first tenth of each second and black for the rest; and a sound.
struct Clip {
  int width = 640, height = 360;
  std::string rate = "24";
  double seconds = 10;
  int firstNumber = 0;
  /// A source filter behind the numbers instead of the body; the flash then fills the second sixth.
  std::string backdrop = {};
  /// ffmpeg's filters over the numbered pictures.
  std::string filters = "null";
  /// ffmpeg's options for the pictures; none at all when empty.
  std::string video = "-c:v libx264 -preset ultrafast -g 24 -pix_fmt yuv420p";
  /// A formula of t for each channel, between bars; no sound when empty.
  std::string sound = "0.5*sin(2000*PI*t)";
  int soundRate = 48000;
  std::string audio = "-c:a flac";
  std::string container = "mkv";
};

/// A sound of 1 kHz in the first tenth of each second.
inline constexpr const char* beeps = "0.5*sin(2000*PI*t)*lt(mod(t\\,1)\\,0.1)";

/// The file, made on first use under `folder`. Several processes may ask for the same clip at the same time.
std::filesystem::path makeClip(const Clip& clip, const std::filesystem::path& folder);

/// Runs the ffmpeg program with these words, separated by blanks, and gives the file that it makes. The words
/// are the key under which the file is kept; "OUT" among them stands for its path.
std::filesystem::path makeFile(const std::string& words, const std::string& extension,
                               const std::filesystem::path& folder);

/// The file, a tone at half of full scale, in the format of its extension. The words go before its path.
void addTone(const std::filesystem::path& file, int pitch, double seconds, const std::filesystem::path& kept,
             const std::string& words = "");

}  // namespace tavek::rig

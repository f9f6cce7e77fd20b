#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "app/informational.h"
#include "base/orientation.h"
#include "base/sound_mode.h"

/// The command line, read in two passes: the first takes the options with their values and the video files,
/// the second acts on the bare words that are left. Both only fill values; readCommandLine ties them to the
/// process.
namespace tavek {

/// What turns console lines on.
struct ConsoleSwitches {
  bool debug = false;
  bool bluetoothDebug = false;
  bool seekDebug = false;
  bool movieDetail = false;
  bool focusMode = false;
  bool showKeycodes = false;
};

/// What the program was started with; lives as long as the process.
struct LaunchOptions {
  std::optional<std::string> language = "en";  ///< preferred language of the sound
  std::optional<std::string> videoDriver;      ///< the SDL driver to force
  Orientation orientation = Orientation::OrientationAuto;
  SoundMode soundMode = SoundMode::Surround;
  bool forceTmdbScan = false;
  bool forceFanartScan = false;
  bool listDrivers = false;
  std::optional<std::string> undoRoom;  ///< the room whose last renames are to be taken back
  ConsoleSwitches switches;
  std::vector<std::string> dashWords;   ///< left to the second pass
  std::vector<std::string> videoPaths;  ///< what to play, absolute unless the argument was empty
};

/// With an error the options are those read up to it.
struct FirstPass {
  LaunchOptions options;
  std::string error;
};

/// The first pass over the arguments behind the program's name; stops at the first bad value.
FirstPass parseArguments(std::span<const std::string> arguments);
/// The second pass: the answer that the words ask for, Answer::None to go on. A word for a scan sets its
/// flag.
Answer readDashWords(LaunchOptions& options);

struct ParsedLine {
  LaunchOptions options;
  std::optional<int> exitStatus;  ///< with a value, main returns it and starts nothing
};

/// Both passes: prints the error or the answer asked for, and sets the process's console switches.
ParsedLine readCommandLine(int argc, const char* const* argv);

}  // namespace tavek

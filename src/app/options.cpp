#include "app/options.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string_view>

#include "base/paths.h"
#include "base/process_flags.h"
#include "library/file_types.h"

namespace tavek {
namespace {

template <typename Value>
struct Word {
  std::string_view word;
  Value value;
};
template <typename Value>
Word(std::string_view, Value) -> Word<Value>;

constexpr std::array orientationWords{
    Word{"auto", Orientation::OrientationAuto},
    Word{"landscape", Orientation::OrientationLandscape},
    Word{"portrait", Orientation::OrientationPortrait},
    Word{"0", Orientation::Orientation0},
    Word{"90", Orientation::Orientation90},
    Word{"180", Orientation::Orientation180},
    Word{"270", Orientation::Orientation270},
};

constexpr std::array soundWords{
    Word{"auto", SoundMode::Auto},
    Word{"stereo", SoundMode::Stereo},
    Word{"surround", SoundMode::Surround},
};

constexpr std::array switchWords{
    Word{"--debug", &ConsoleSwitches::debug},
    Word{"--bluetooth-debug", &ConsoleSwitches::bluetoothDebug},
    Word{"--seek-debug", &ConsoleSwitches::seekDebug},
    Word{"--movie-detail", &ConsoleSwitches::movieDetail},
    Word{"--focus-mode", &ConsoleSwitches::focusMode},
    Word{"--show-keycodes", &ConsoleSwitches::showKeycodes},
};

constexpr std::array answerWords{
    Word{"--help", Answer::Help},
    Word{"--git", Answer::Git},
    Word{"--extensions", Answer::Extensions},
    Word{"--codecs", Answer::Codecs},
};

struct ScanWord {
  std::string_view word;
  bool LaunchOptions::*scan;
  bool debug;
};

constexpr auto scanWords = std::to_array<ScanWord>({
    {"--tmdb-scan", &LaunchOptions::forceTmdbScan, false},
    {"--tmdb-scan-debug", &LaunchOptions::forceTmdbScan, true},
    {"--fanart-scan", &LaunchOptions::forceFanartScan, false},
    {"--fanart-scan-debug", &LaunchOptions::forceFanartScan, true},
});

template <typename Table>
auto findWord(const Table& table, std::string_view word) {
  const auto entry = std::ranges::find_if(table, [&](const auto& e) { return e.word == word; });
  return entry != std::end(table) ? &*entry : nullptr;
}

/// Each returns the error text, empty when the value is good.
std::string setOrientation(LaunchOptions& options, const std::string& value) {
  const auto* word = findWord(orientationWords, value);
  if (word == nullptr) return "Invalid orientation: " + value;
  options.orientation = word->value;
  return {};
}

std::string setLanguage(LaunchOptions& options, const std::string& value) {
  if (!value.empty()) options.language = value;
  return {};
}

std::string setSound(LaunchOptions& options, const std::string& value) {
  const auto* word = findWord(soundWords, value);
  if (word == nullptr) return "Invalid sound mode: " + value;
  options.soundMode = word->value;
  return {};
}

std::string setDriver(LaunchOptions& options, const std::string& value) {
  if (value.empty() || value == "list") {
    options.listDrivers = true;
  } else {
    options.videoDriver = value;
  }
  return {};
}

std::string setUndoRoom(LaunchOptions& options, const std::string& value) {
  if (value.empty()) return "No room given whose renames are to be undone";
  options.undoRoom = value;
  return {};
}

struct ValueOption {
  std::string_view name;
  std::string (*set)(LaunchOptions&, const std::string&);
};

constexpr std::string_view driverOption = "--driver";
constexpr std::string_view undoOption = "--undo-renames";
constexpr auto valueOptions = std::to_array<ValueOption>({
    {"--orientation", setOrientation},
    {"--language", setLanguage},
    {"--sound", setSound},
    {driverOption, setDriver},
    {undoOption, setUndoRoom},
});

void takePath(LaunchOptions& options, const std::string& argument) {
  const std::filesystem::path given = argument;
  const std::filesystem::path path =
      given.empty() || given.is_absolute() ? given : mediaRoot() / "movies" / given;
  if (isVideoFile(path)) options.videoPaths.push_back(path.string());
}

/// Walks the arguments once.
class ArgumentReader {
 public:
  explicit ArgumentReader(std::span<const std::string> arguments) : arguments_(arguments) {}

  FirstPass read() {
    while (at_ < arguments_.size() && result_.error.empty()) {
      const std::string& argument = arguments_[at_++];
      if (takeValueOption(argument)) continue;
      if (const auto* word = findWord(switchWords, argument)) {
        result_.options.switches.*word->value = true;
      } else if (argument.starts_with("--")) {
        result_.options.dashWords.push_back(argument);
      } else {
        takePath(result_.options, argument);
      }
    }
    return std::move(result_);
  }

 private:
  bool takeValueOption(const std::string& argument) {
    for (const ValueOption& option : valueOptions) {
      if (!argument.starts_with(option.name)) continue;
      const std::string_view rest = std::string_view(argument).substr(option.name.size());
      if (rest.starts_with('=')) {
        result_.error = option.set(result_.options, std::string(rest.substr(1)));
        return true;
      }
      if (rest.empty()) return option.name == driverOption ? takeDriver() : takeNext(option);
    }
    return false;
  }

  /// Without a next argument the option is a bare word like any other, but for the one that starts nothing.
  bool takeNext(const ValueOption& option) {
    if (at_ == arguments_.size()) {
      if (option.name == undoOption) result_.error = option.set(result_.options, "");
      return option.name == undoOption;
    }
    result_.error = option.set(result_.options, arguments_[at_++]);
    return true;
  }

  /// Alone the option lists the drivers; a separate name is one even when it says "list".
  bool takeDriver() {
    if (at_ == arguments_.size() || arguments_[at_].starts_with('-')) {
      result_.options.listDrivers = true;
    } else {
      result_.options.videoDriver = arguments_[at_++];
    }
    return true;
  }

  std::span<const std::string> arguments_;
  std::size_t at_ = 0;
  FirstPass result_;
};

void apply(const ConsoleSwitches& switches) {
  debugEnabled = switches.debug;
  bluetoothDebugEnabled = switches.bluetoothDebug;
  movieDetailEnabled = switches.movieDetail;
  focusModeEnabled = switches.focusMode;
  showKeycodesEnabled = switches.showKeycodes;
  // Each item reads the environment, so that the switch can come from outside as well.
  if (switches.seekDebug) setenv("TAVEK_SEEK_DEBUG", "1", 1);
}

}  // namespace

FirstPass parseArguments(std::span<const std::string> arguments) {
  return ArgumentReader(arguments).read();
}

Answer readDashWords(LaunchOptions& options) {
  for (const std::string& word : options.dashWords) {
    if (const auto* answer = findWord(answerWords, word)) return answer->value;
    if (const auto* scan = findWord(scanWords, word)) {
      options.*scan->scan = true;
      options.switches.debug |= scan->debug;
    }
  }
  return options.listDrivers ? Answer::Drivers : Answer::None;
}

ParsedLine readCommandLine(int argc, const char* const* argv) {
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  FirstPass first = parseArguments(arguments);
  if (!first.error.empty()) {
    std::cerr << first.error << std::endl;
    return {std::move(first.options), EXIT_FAILURE};
  }
  const Answer answer = readDashWords(first.options);
  apply(first.options.switches);
  if (answer == Answer::None) return {std::move(first.options), {}};
  return {std::move(first.options), giveAnswer(answer)};
}

}  // namespace tavek

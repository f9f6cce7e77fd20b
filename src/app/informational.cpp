#include "app/informational.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <system_error>

#include <SDL.h>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "app/build_info.h"
#include "base/console.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "library/file_types.h"
#include "scan/undo_renames.h"
#include "state/state_store.h"

namespace tavek {
namespace {

using console::reset;
using std::endl;

struct HelpRow {
  std::string_view label;
  std::string_view comment;
};

constexpr auto helpRows = std::to_array<HelpRow>({
    {"tavek", "full screen mode at highest available resolution"},
    {"tavek <video>", "play specific video"},
    {"tavek --git", "show git branch and hash"},
    {"tavek --codecs", "show all codecs available on the host system"},
    {"tavek --extensions", "list supported file extensions (demuxers)"},
    {"tavek --orientation <value>", "force orientation: auto|landscape|portrait|0|90|180|270"},
    {"tavek --driver", "list all available video drivers"},
    {"tavek --driver <name>", "force SDL video driver (use --driver list to show options)"},
    {"tavek --sound <mode>", "audio output: surround (default)|auto (match source)|stereo"},
    {"tavek --language <code>", "prefer audio language when multiple tracks (e.g., en, fr)"},
    {"tavek --debug", "enable debug logging"},
    {"tavek --bluetooth-debug", "log raw bluetoothctl output"},
    {"tavek --seek-debug", "log resume/seek diagnostics"},
    {"tavek --movie-detail", "print container/codec info for the movie"},
    {"tavek --focus-mode", "log input focus changes"},
    {"tavek --show-keycodes", "log SDL key events"},
    {"tavek --tmdb-scan", "force TMDB scan now"},
    {"tavek --fanart-scan", "force fanart scan now"},
});
constexpr std::size_t helpColumn = 30;

constexpr std::array firstTypes{AVMEDIA_TYPE_VIDEO, AVMEDIA_TYPE_AUDIO, AVMEDIA_TYPE_SUBTITLE,
                                AVMEDIA_TYPE_DATA, AVMEDIA_TYPE_ATTACHMENT};
constexpr std::size_t typeColumn = 12;
constexpr std::size_t countColumn = 8;
constexpr std::size_t samplesPerType = 20;

/// Filled with blanks or cut to the width.
std::string padded(std::string_view text, std::size_t width) {
  std::string column(text.substr(0, width));
  column.resize(width, ' ');
  return column;
}

void printGit(std::ostream& out) {
  out << console::boldYellow << " Git commit details:" << reset << endl;
  out << console::boldYellow << " Branch: " << console::boldWhite << buildBranch << reset << endl;
  out << console::boldYellow << "   Hash: " << console::boldWhite << buildHash << reset << endl;
  out << endl;
}

void printGroup(std::ostream& out, AVMediaType type, const DecoderGroup& group) {
  if (group.count == 0) return;
  const char* name = av_get_media_type_string(type);
  out << console::boldGreen << padded(name != nullptr ? name : "unknown", typeColumn) << reset << ' '
      << console::boldCyan << padded(std::to_string(group.count), countColumn) << reset << endl;
  for (const std::string& sample : group.samples) out << "  - " << sample << endl;
}

int listDrivers() {
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    std::cerr << "SDL_Init failed: " << SDL_GetError() << endl;
    return EXIT_FAILURE;
  }
  if (const char* current = SDL_GetCurrentVideoDriver()) {
    std::cout << "Current video driver: " << console::boldGreen << current << reset << endl;
  } else {
    std::cerr << console::boldRed << "No active video driver" << reset << endl;
  }
  const int count = SDL_GetNumVideoDrivers();
  if (count > 0) {
    std::cout << "Available drivers:";
    for (int i = 0; i < count; ++i) std::cout << ' ' << SDL_GetVideoDriver(i);
    std::cout << endl;
  }
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
  SDL_Quit();
  std::cout << endl;
  return EXIT_SUCCESS;
}

/// Of a room's name, or of any path that leads to it. What is remembered knows the media by the library's
/// path.
std::filesystem::path roomFolderOf(const std::filesystem::path& given) {
  std::filesystem::path folder = std::filesystem::absolute(given).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();
  std::filesystem::path room = mediaRoot() / folder.filename();
  std::error_code ignored;
  return !given.has_parent_path() || std::filesystem::equivalent(folder, room, ignored) ? room : folder;
}

}  // namespace

void printHelp(std::ostream& out) {
  out << endl;
  out << console::boldOrange << "TAVEK " << console::boldWhite << buildVersion << reset << endl;
  out << endl;
  out << console::grey << "Copyright (c) the tavek authors." << reset << endl;
  out << console::grey << "Free software under the MIT licence; it comes with no warranty." << reset << endl;
  out << endl;
  out << console::white << console::yellow << "Home options:" << reset << endl;
  for (const auto& [label, comment] : helpRows) {
    out << console::white << padded(label, helpColumn) << console::yellow << "  # " << comment << reset
        << endl;
  }
  out << endl;
}

void printExtensions(std::ostream& out, const std::set<std::string>& extensions) {
  if (extensions.empty()) {
    out << "No extensions reported by demuxers." << endl;
    return;
  }
  out << console::boldYellow << "Supported file extensions:" << reset << endl;
  for (const std::string& extension : extensions) out << "  * " << extension << endl;
  out << endl;
}

DecoderSummary summarizeDecoders() {
  DecoderSummary summary;
  void* position = nullptr;
  while (const AVCodec* codec = av_codec_iterate(&position)) {
    if (av_codec_is_decoder(codec) == 0) continue;
    DecoderGroup& group = summary[codec->type];
    if (++group.count > static_cast<int>(samplesPerType)) continue;
    std::string& sample = group.samples.emplace_back(codec->name != nullptr ? codec->name : "unknown");
    if (codec->long_name != nullptr) sample.append(" (").append(codec->long_name).append(")");
  }
  return summary;
}

void printDecoders(std::ostream& out, const DecoderSummary& summary) {
  if (summary.empty()) {
    out << "No decoders found." << endl;
    return;
  }
  out << console::boldYellow << "Decoder summary:" << reset << endl;
  out << console::boldWhite << padded("Type", typeColumn) << ' ' << padded("Count", countColumn)
      << " Sample decoders" << reset << endl;
  DecoderSummary rest = summary;
  for (const AVMediaType type : firstTypes) {
    printGroup(out, type, rest[type]);
    rest.erase(type);
  }
  for (const auto& [type, group] : rest) printGroup(out, type, group);
  out << endl;
}

int giveAnswer(Answer answer) {
  switch (answer) {
    case Answer::None:
      break;
    case Answer::Help:
      printHelp(std::cout);
      break;
    case Answer::Git:
      printGit(std::cout);
      break;
    case Answer::Extensions:
      printExtensions(std::cout, demuxerExtensions());
      break;
    case Answer::Codecs:
      printDecoders(std::cout, summarizeDecoders());
      break;
    case Answer::Drivers:
      return listDrivers();
  }
  return EXIT_SUCCESS;
}

int undoRenamesOf(const std::string& room) {
  const std::filesystem::path folder = roomFolderOf(room);
  StateStore state(stateFile());
  const UndoReport report = undoRenames(folder, state.parts(), quitRequested);
  if (!report.found) {
    std::cerr << "Nothing was renamed in " << folder.string() << endl;
    return EXIT_FAILURE;
  }
  for (const std::string& line : report.lines) std::cout << line << endl;
  std::cout << report.undone << " taken back, " << report.skipped << " skipped" << endl;
  // There is no hurry, and what is remembered must not stay behind.
  if (!state.flush(std::chrono::seconds(30))) std::cerr << "Positions and marks could not be saved" << endl;
  return EXIT_SUCCESS;
}

}  // namespace tavek

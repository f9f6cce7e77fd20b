#include "app/library_run.h"

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "app/failed_item.h"
#include "app/options.h"
#include "base/console.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "player/playback_timer.h"
#include "viewing/item_loop.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t pauseMs = 250;

std::vector<std::string> mediaOf(const fs::path& room) {
  const auto plays = classifyFolder(room) == MediaKind::Music ? isAudioFile : isVideoFile;
  std::vector<std::string> files;
  walkBelow(room, [&](const fs::recursive_directory_iterator& entry) {
    if (plays(entry->path()) && isRegularFile(*entry)) files.push_back(entry->path().string());
    return true;
  });
  std::ranges::sort(files);
  return files;
}

std::optional<std::string> startItem(const fs::path& room, const std::vector<std::string>& files,
                                     StoredUsers& users) {
  const auto target = users.resumeTarget(room);
  if (target && !target->empty()) return target->string();
  if (files.empty()) return {};
  users.setPlaying(files.front(), "");
  return files.front();
}

/// Where the start item stands among the files; the first one if it is not there.
std::size_t placeOf(const std::string& start, const std::vector<std::string>& files) {
  const auto found = std::ranges::find(files, fs::path(start).lexically_normal().string());
  if (found != files.end()) return static_cast<std::size_t>(found - files.begin());
  const auto complain = [](const char* what, const std::string& path) {
    std::cerr << console::boldRed << what << path << console::reset << std::endl;
  };
  complain("Persisted start video not found in library: ", start);
  std::error_code ignored;
  if (fs::is_regular_file(start, ignored)) {
    complain("Persisted start video exists but is not indexed as playable: ", start);
  }
  return 0;
}

/// Plays the chosen room. Returns after an item that ended as the viewer wanted, or when nothing plays.
void playRoom(const fs::path& room, const PlayContext& context, SoundMode& soundMode) {
  std::vector<std::string> files = mediaOf(room);
  const std::optional<std::string> start = startItem(room, files, context.stored.users);
  if (!start) {
    std::cerr << "No persisted video for user \"" << context.stored.users.activeUser() << "\" under " << room
              << std::endl;
    return sleepMilliseconds(pauseMs);
  }
  if (files.empty()) {
    files.push_back(*start);
  } else {
    std::rotate(files.begin(), files.begin() + static_cast<std::ptrdiff_t>(placeOf(*start, files)),
                files.end());
  }
  for (const std::string& file : files) {
    try {
      soundMode = playFromPath(context, file, soundMode);
      return;
    } catch (const ffmpeg::Error& error) {
      tellFailed(file, error);
      context.stored.users.clearPlaying(room);
    }
    if (quitRequested || stopSignalled) return;
  }
  sleepMilliseconds(pauseMs);
}

}  // namespace

void runLibrary(Display& display, const Stored& stored, const LaunchOptions& options) {
  const PlayContext context{.display = &display, .stored = stored, .language = options.language};
  SoundMode soundMode = options.soundMode;
  while (!quitRequested && !stopSignalled) {
    display.goHome(true);
    display.runChooser();
    display.leaveHome();
    display.discardInput();
    display.refreshWatchedBits();
    if (stopSignalled || quitRequested) break;
    playRoom(display.currentFolder(), context, soundMode);
  }
  quitRequested = true;
}

}  // namespace tavek

#include "app/library_run.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/failed_item.h"
#include "base/console.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "library/media_list.h"
#include "lights/hue_lights.h"
#include "viewing/await.h"
#include "viewing/item_loop.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds pauseTime{250};

/// What the disk tells of a room that was chosen.
struct RoomPlan {
  std::vector<std::string> files;
  std::optional<std::string> start;  ///< the stored item, unless it can't be read
};

std::optional<RoomPlan> planRoom(const fs::path& room, const PlayContext& context) {
  BackgroundJob<RoomPlan> job;
  job.start([room, users = &context.stored.users](JobSide<RoomPlan>& side) {
    RoomPlan plan{listMedia(room, side.stop()), {}};
    const auto stored = users->resumeTarget(room);
    if (stored && !stored->empty()) plan.start = stored->string();
    side.post(std::move(plan));
  });
  return awaitOnScreen(context.display, context.clock, job);
}

void complain(const char* what, const std::string& path) {
  std::cerr << console::boldRed << what << path << console::reset << std::endl;
}

/// Where the start item stands among the files; the first one if it is not there.
std::size_t placeOf(const std::string& start, const std::vector<std::string>& files) {
  const auto found = std::ranges::find(files, fs::path(start).lexically_normal().string());
  if (found != files.end()) return static_cast<std::size_t>(found - files.begin());
  complain("Persisted start video not found in library: ", start);
  std::error_code ignored;
  if (fs::is_regular_file(start, ignored)) {
    complain("Persisted start video exists but is not indexed as playable: ", start);
  }
  return 0;
}

/// Every file of the room once, from the one to start with; empty with nothing to play.
std::vector<std::string> queueOf(RoomPlan plan, const PlayContext& context) {
  if (!plan.start) {
    if (!plan.files.empty()) context.stored.users.setPlaying(plan.files.front(), "");
    return std::move(plan.files);
  }
  if (plan.files.empty()) return {*plan.start};
  const auto first = plan.files.begin() + static_cast<std::ptrdiff_t>(placeOf(*plan.start, plan.files));
  std::rotate(plan.files.begin(), first, plan.files.end());
  return std::move(plan.files);
}

/// Plays the chosen room. Returns after an item that ended as the viewer wanted, or when nothing plays.
void playRoom(const fs::path& room, const PlayContext& context) {
  auto plan = planRoom(room, context);
  if (!plan) return;
  const std::vector<std::string> files = queueOf(std::move(*plan), context);
  if (files.empty()) {
    std::cerr << "No persisted video for user \"" << context.stored.users.activeUser() << "\" under "
              << room.string() << std::endl;
  }
  for (const std::string& file : files) {
    try {
      playFromPath(context, file);
      return;
    } catch (const std::exception& error) {
      tellFailed(file, error);
      context.stored.users.clearPlaying(room);
    }
    if (quitRequested || stopSignalled) return;
  }
  context.clock.sleepFor(pauseTime);
}

}  // namespace

void runLibrary(const PlayContext& context) {
  Display& display = context.display;
  while (!quitRequested && !stopSignalled) {
    // After an item that was left by the home key the screen is on its way home already.
    if (!display.atHome()) display.goHome(true);
    display.runChooser();
    display.leaveHome();
    display.discardInput();
    display.refreshWatchedBits();
    if (stopSignalled || quitRequested) break;
    playRoom(display.currentFolder(), context);
    if (!quitRequested) context.lights.hueTriggerPause();
  }
  quitRequested = true;
}

}  // namespace tavek

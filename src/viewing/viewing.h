#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>

#include "base/background_job.h"
#include "base/clock.h"
#include "display/toolkit/nav_code.h"
#include "player/play.h"
#include "viewing/held_volume.h"
#include "viewing/item_loop.h"
#include "viewing/item_state.h"
#include "viewing/selection.h"

namespace tavek {

/// What a viewer does with one item, from its opening to what follows it. Each pass asks the screen for the
/// keys, makes requests of them, of the player and of the time that has gone by, and carries out the steps
/// that follow (item_state.h). Main thread; no pass waits longer than a picture, or 50 ms.
class Viewing {
 public:
  /// `resumeUs`: where it starts, whatever is kept of it.
  Viewing(const PlayContext& context, const std::string& path, std::optional<std::int64_t> resumeUs);

  /// Until the item is over. Throws what the player has failed with, unless the viewer has ended the item.
  void run();

  /// After run(): the item to open next. None returns to the caller; an empty path ends the run of items.
  const std::optional<std::filesystem::path>& nextPath() const { return nextPath_; }
  /// The same item is to go on in another sound mode.
  bool soundModeChanged() const { return soundModeChanged_; }
  const std::optional<std::int64_t>& resumeUs() const { return resumeUs_; }

 private:
  /// A seek by keys.
  struct KeySeek {
    Clock::Time startedAt;
    Clock::Time lastAt;
  };

  void pass();
  void serveCode(NavCode code);
  void changeSound();
  void serveVolume(NavCode code);
  void serveTimes(NavCode code);
  void serveSelection();
  void goTo(ItemRequest request, std::filesystem::path item);
  void serve(ItemRequest request);
  ItemFacts facts() const;
  void enter(ItemState next);
  bool inStep() const;
  void steerPlayer(ItemActs acts, ItemRequest request);
  void steerScreen(ItemActs acts);

  void waitForFile();
  void showTurn();
  void showStanding();
  void show();
  void begin();
  void seekStep(int direction);
  void repeatVolume();
  void showVolumeBar();
  void takeSnapshot();
  void switchWatched();
  void stepTrack(int direction);
  void serveNeighbour();
  void lookAhead();
  void chooseNext();

  // What is kept of an item for its next start.
  std::int64_t startPosition();
  void storeBoundary(double framesPerSecond);
  void storePosition();
  void storeEnd();
  std::int64_t savedPosition() const;
  bool watched() const;

  const PlayContext& context_;
  Display& display_;
  Clock& clock_;
  const std::string path_;
  const std::string user_;  ///< for whom it was started: all that is kept is theirs
  std::optional<std::int64_t> resumeUs_;
  const bool isAvi_;  ///< its index cannot be trusted, so it starts anew each time
  Play play_;
  ItemState state_ = ItemState::Starting;
  bool opened_ = false;
  bool ended_ = false;  ///< by itself, not by the viewer
  bool musicRoom_;
  Clock::Time startedAt_;
  Clock::Time startGuardUntil_;  ///< until then a pause key is the one that has started the item
  Clock::Time stateSince_;
  std::optional<KeySeek> seek_;
  HeldVolume volume_;
  Selection selection_{Selection::Loading::StatusLine};
  BackgroundJob<std::monostate> snapshot_;
  BackgroundJob<std::optional<std::filesystem::path>> neighbour_;
  BackgroundJob<std::optional<std::filesystem::path>> following_;  ///< what plays after a song
  int trackSteps_ = 0;  ///< that keys have asked for, and neighbour_ looks for
  std::optional<std::filesystem::path> nextPath_;
  bool soundModeChanged_ = false;
};

}  // namespace tavek

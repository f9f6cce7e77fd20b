#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "base/sound_mode.h"
#include "display/nav_code.h"
#include "player/pacing.h"
#include "player/picture_frame.h"
#include "player/pipeline.h"
#include "player/playback_timer.h"
#include "state/stored.h"

namespace tavek {

class Display;

/// One playback of one file, on the main thread: opened by the constructor, played by run(), then asked what
/// comes next and destroyed. Throws ffmpeg::Error for a file that cannot be opened or fails on the way.
class ItemPlay {
 public:
  /// `display` may be null: then the item plays unseen and nothing can steer it but a signal.
  ItemPlay(Display* display, const std::string& path, std::optional<std::string> language,
           SoundMode soundMode, const Stored& stored);

  /// Blocks until the item is over; rethrows what a worker met, unless the viewer has ended the item.
  void run();

  /// After run(): the item to open next. None returns to the caller; an empty path ends the run of items.
  const std::optional<std::filesystem::path>& nextPath() const { return nextPath_; }

 private:
  using Clock = std::chrono::steady_clock;

  /// Where a seek by keys stands. Times of the steady clock; meaningless unless `active`.
  struct KeySeek {
    bool active = false;
    bool pausedBefore = false;
    Clock::time_point startedAt;
    Clock::time_point lastAt;
    std::optional<Clock::time_point> repauseAt;  ///< the pause comes back then
  };
  enum class VolumeKey { None, Up, Down };

  struct Command {
    NavCode code;
    void (ItemPlay::*serve)();
    bool inPause;  ///< also served in a pause taken with the pause key
  };
  static const Command commands[];

  void startAtStored();
  void storeBoundary();
  void storePosition();
  void storeEnd();
  bool toggleWatched();
  void begin();
  void pass();
  NavCode nextCode();
  void repauseWhenDue();
  void dispatch(NavCode code);
  void frameStep();
  void pausedStep();
  void take(PicturePtr picture);
  void waitForTurn(std::int64_t ptsUs);
  void show();
  void stopItem();
  void naturalEnd();
  void chooseNext();

  // What the codes do.
  void togglePause();
  void seekForward() { keySeek(+1); }
  void seekBackward() { keySeek(-1); }
  void keySeek(int direction);
  void seekCommit();
  void goHome();
  void previousItem();
  void volumeUp() { pressVolume(VolumeKey::Up); }
  void volumeDown() { pressVolume(VolumeKey::Down); }
  void releaseVolume();
  void snapshot();
  void wake();
  void openPosters();
  void closePosters();
  void playSelection();

  void pause();
  void unpause();
  void requestSeek(std::int64_t positionUs);
  void pressVolume(VolumeKey key);
  void volumeStep(bool showBar);
  void volumeHoldStep(bool showBar);
  void showVolumeBar();
  bool paused() const { return pipeline_.paused; }
  bool ending() const { return exitAt_.has_value(); }
  std::int64_t savedPosition();
  bool watched() const;

  Display* const display_;
  const Stored stored_;
  const std::string path_;
  const bool isAvi_;  ///< its index cannot be trusted, so it starts anew each time
  Pipeline pipeline_;
  PlaybackTimer timer_;
  Pacing pacing_;
  std::int64_t presentUs_ = 0;  ///< running mean of what bringing a picture to the screen takes
  PicturePtr lastFrame_;        ///< the picture on screen
  std::uint64_t lastSerial_ = 0;
  KeySeek seek_;
  VolumeKey heldVolumeKey_ = VolumeKey::None;
  Clock::time_point lastVolumeStepAt_;
  Clock::time_point startGuardUntil_;
  std::optional<Clock::time_point> exitAt_;  ///< the picture fades out on the way home since then
  bool musicRoom_ = false;
  bool postersOpen_ = false;            ///< the strip lies over this item
  bool audioClosedForBrowser_ = false;  ///< the device is free while a series is browsed
  bool stopRequested_ = false;          ///< the viewer or a signal ended the item
  bool ended_ = false;
  std::optional<std::filesystem::path> nextPath_;
};

}  // namespace tavek

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <SDL.h>

#include "base/clock.h"
#include "base/orientation.h"
#include "display/focus.h"
#include "display/home/chooser.h"
#include "display/home/rooms.h"
#include "display/key_input.h"
#include "display/playback/clear_logo.h"
#include "display/playback/pause_icon.h"
#include "display/playback/picture_view.h"
#include "display/playback/seek_bar.h"
#include "display/playback/video_picture.h"
#include "display/playback/volume_bar.h"
#include "display/screen.h"
#include "display/status_lines.h"
#include "display/strip/letter_bar.h"
#include "display/strip/posters.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/nav_code.h"
#include "state/stored.h"

namespace tavek {

/// The screen with all that lies on it, and the keys. One object from the program's start to its end, on the
/// main thread only. Without a screen every operation still works on its flags and draws nothing.
class Display {
 public:
  /// The wished place and size of the window. Failure is told on stderr and leaves usable() false.
  Display(int x, int y, int width, int height, Orientation orientation, const Stored& stored, Clock& clock);
  ~Display();
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  bool usable() const { return screen_.renderer() != nullptr; }
  SDL_Renderer* renderer() const { return screen_.renderer(); }

  /// Once per pass of a loop: drains the events and does what concerns navigation; what concerns playback
  /// comes back as a code. Never blocks.
  NavCode pollInput();
  FocusName currentFocus() const { return focusOf(flags_); }

  /// Draws the picture with everything over it and presents it. The planes are only read during the call.
  /// `positionUs` is for the seek bar; negative means not known.
  void presentFrame(const PictureView& picture, std::int64_t positionUs);
  /// The same with a black picture.
  void presentBlank();

  // The item.
  void setDuration(std::int64_t us) { seekBar_.setDuration(us); }
  /// Makes the file the current video, and its poster the selected one.
  void alignWithItem(const std::filesystem::path& path);
  void setVideoPlaying(bool playing);
  /// The pause of the viewer; setVideoPlaying(false) clears it, so it is set after that.
  void setVideoPaused(bool paused);
  void startVideoFadeIn();
  void startVideoFadeOut();

  // Overlays.
  /// Takes the place of the strip.
  void showSeekBar();
  void showVolume(int percent, double gainDb, double minDb, double maxDb);

  // Posters.
  /// Lists a folder in the strip. With the strip on the screen it slides out first, and in again over the new
  /// list.
  void openPosterFolder(const std::filesystem::path& path);
  /// Lists the room that a file lies in, unless a folder of that room is open.
  void openRoomOf(const std::filesystem::path& file);
  /// Once per frame: loaded tiles become textures, at most `count` of them.
  void takePendingPosters(int height, int count);
  void showStrip();
  void hideStrip();
  bool stripShown() const { return flags_.strip.shown(); }
  /// After a change of what was watched, or of the user.
  void refreshWatchedBits() { posters_.refreshWatchedBits(); }
  const Posters& posters() const { return posters_; }
  /// Null without a selection.
  const Poster* selectedPoster() const;
  /// The poster on which the strip offers to switch the watched mark: an episode; null for anything else.
  const Poster* watchedToggleTarget() const;

  // Words to the viewer.
  void showStatus(const std::string& text) { statusLines_.showStatus(text, clock_.ticksMs()); }
  /// Stands above the strip until the next step in it.
  void showError(const std::string& text) { statusLines_.showError(text); }
  void clearError() { statusLines_.clearError(); }
  /// The item that follows was picked on the strip; read once.
  void dismissError() { errorDismissed_ = true; }
  bool takeErrorDismissed() { return std::exchange(errorDismissed_, false); }

  // Home and rooms.
  /// Back to the top level: nothing of the item is left on the screen but its picture. `refresh` lists the
  /// room of the active user if no posters are there.
  void goHome(bool refresh);
  /// The home screen has the screen, or is on its way there.
  bool atHome() const { return flags_.homeMode; }
  /// The home screen's loop, until a user with a room was chosen or the program is to end.
  void runChooser();
  /// An item takes the screen.
  void leaveHome();
  /// Drops what was pressed and not yet looked at.
  void discardInput();
  void selectRoomForPath(const std::filesystem::path& path);
  MediaKind roomKind() const { return flags_.roomKind; }
  std::filesystem::path currentFolder() const { return rooms_.current(); }
  /// Once after each opening of the home screen over a running item, and once after its closing.
  bool takePauseToggle() { return std::exchange(pendingPauseChooser_, false); }

 private:
  void loadClearLogo();
  void drawOverlays(const FrameContext& frame, std::int64_t positionUs);
  NavCode pumpEvents();
  NavCode handleEvent(const SDL_Event& event);
  NavCode apply(const KeyResult& result, Uint64 nowMs);
  void noteActivity(Uint64 nowMs) { lastActivityAt_ = nowMs; }

  // The strip.
  void moveOnStrip(Direction direction, Uint64 nowMs);
  void moveSelection(int delta);
  void stepUp(Uint64 nowMs);
  void type(char character);
  void jumpToTyped();
  NavCode selectionAction();
  bool enterSelection();
  NavCode leaveFolder();
  void advanceStrip(Uint64 nowMs);
  void topUpPosters();
  void dropStrip();
  void drawPosters(const FrameContext& frame);
  void updateHoldWrites();

  // The home screen.
  void openChooser();
  void closeChooser();
  void makeUserCurrent();
  void moveUser(Direction direction);
  void confirmUser(Uint64 nowMs);
  void finishFolderChange(Uint64 nowMs);
  void leaveHomeForStrip();
  void switchRoom(Direction direction);
  bool selectRoom(std::size_t index, bool remember);
  void enterRoom(const std::filesystem::path& path);
  void drawChooser(const FrameContext& frame);
  void presentChooser();
  FrameContext frameContext() const;

  const Stored stored_;
  Clock& clock_;
  VideoPicture picture_;
  Screen screen_;
  SeekBar seekBar_;
  VolumeBar volumeBar_;
  PauseIcon pauseIcon_;
  ClearLogo clearLogo_;
  Posters posters_{stored_.users};
  LetterBar letterBar_;
  StatusLines statusLines_;
  Rooms rooms_;
  Chooser chooser_;

  NavFlags flags_;
  KeyInput keys_;
  std::filesystem::path currentVideo_;
  Uint64 lastActivityAt_ = 0;
  std::optional<std::filesystem::path> pendingFolder_;  ///< to open when the strip has slid out
  /// A confirmed user's way from the home screen to the room.
  struct FolderChange {
    Uint64 at;
    std::filesystem::path folder;
  };
  std::optional<FolderChange> folderChange_;
  bool errorDismissed_ = false;
  bool chooserPausedPlayback_ = false;
  bool pendingPauseChooser_ = false;
};

}  // namespace tavek

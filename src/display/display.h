#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <SDL.h>

#include "base/clock.h"
#include "base/orientation.h"
#include "base/owner_thread.h"
#include "display/home/home.h"
#include "display/music/music_screen.h"
#include "display/playback/playback_screen.h"
#include "display/screen.h"
#include "display/screensaver/idle_scans.h"
#include "display/screensaver/screensaver.h"
#include "display/settings/settings.h"
#include "display/status_lines.h"
#include "display/strip/strip.h"
#include "display/theme/theme_player.h"
#include "display/theme/theme_rules.h"
#include "display/toolkit/focus.h"
#include "display/toolkit/key_input.h"
#include "display/toolkit/nav_code.h"
#include "state/stored.h"

namespace tavek {

/// The window, the screens that lie in it, and the way of keys to them. One object from the program's start
/// to its end, on the main thread only. Without a window every operation still works on the screens' state
/// and draws nothing.
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
  /// Has the themes of shows heard by this device. Gives the device for items, which the themes leave to
  /// them.
  PcmDeviceFactory soundThemes(PcmDeviceFactory factory);
  void stopTheme();
  FocusName currentFocus() const { return focusOf(focusFacts()); }

  /// Draws the picture with everything over it and presents it. The planes are only read during the call.
  /// `positionUs` is for the seek bar; negative means not known.
  void presentFrame(const PictureView& picture, std::int64_t positionUs);
  /// The same with a black picture.
  void presentBlank();

  // The item.
  void setDuration(std::int64_t us) { playback_.setDuration(us); }
  /// Makes the file the current video, and its poster the selected one.
  void alignWithItem(const std::filesystem::path& path);
  void setVideoPlaying(bool playing);
  /// The pause of the viewer; setVideoPlaying(false) clears it, so it is set after that.
  void setVideoPaused(bool paused);
  bool videoPlaying() const { return playback_.videoPlaying(); }
  bool videoPaused() const { return playback_.videoPaused(); }
  void startVideoFadeIn() { playback_.startFadeIn(clock_.ticksMs()); }
  void startVideoFadeOut() { playback_.startFadeOut(clock_.ticksMs()); }

  // Overlays.
  /// Takes the place of the strip.
  void showSeekBar();
  void showVolume(int percent, double gainDb, double minDb, double maxDb) {
    playback_.showVolume(percent, gainDb, minDb, maxDb, clock_.ticksMs());
  }

  // Posters.
  /// Lists a folder in the strip. With the strip on the screen it slides out first, and in again over the new
  /// list.
  void openPosterFolder(const std::filesystem::path& path);
  /// Lists the room that a file lies in, unless a folder of that room is open.
  void openRoomOf(const std::filesystem::path& file);
  /// Once per frame: loaded tiles become textures, at most `count` of them.
  void takePendingPosters(int height, int count);
  /// `keepTheme`: shows may sound while the strip rests on them.
  void showStrip(bool keepTheme);
  void hideStrip() { strip_.hide(clock_.ticksMs()); }
  bool stripShown() const { return strip_.shown(); }
  /// On the strip, as left and right do.
  void stepSelection(int delta) { strip_.moveSideways(delta, clock_.ticksMs()); }
  /// After a change of what was watched, or of the user.
  void refreshWatchedBits() { strip_.posters().refreshWatchedBits(); }
  const Posters& posters() const { return strip_.posters(); }
  /// Null without a selection.
  const Poster* selectedPoster() const { return strip_.selectedPoster(); }
  /// The poster on which the strip offers to switch the watched mark: an episode; null for anything else.
  const Poster* watchedToggleTarget() const { return strip_.watchedToggleTarget(roomKind_); }

  // Settings.
  /// `playing`: an item runs, and is asked to pause for as long as they are open.
  void toggleSettings(bool playing);
  void closeSettings() { settings_.closeSettings(); }
  /// An item begins, under settings that may be open.
  void pauseForSettings() { settings_.pausePlayback(); }
  /// The mode for what plays next; the settings change it.
  SoundMode soundMode() const { return settings_.soundMode(); }
  void setDisplaySoundMode(SoundMode mode) { settings_.setSoundMode(mode); }
  /// Called when a user was chosen on the home screen.
  void setUserChosen(std::function<void()> chosen) { userChosen_ = std::move(chosen); }

  // Words to the viewer.
  void showStatus(const std::string& text) { statusLines_.showStatus(text, clock_.ticksMs()); }
  /// Stands above the strip until the next step in it.
  void showError(const std::string& text) { strip_.showError(text); }
  void clearError() { strip_.clearError(); }
  /// The item that follows was picked on the strip; read once.
  void dismissError() { errorDismissed_ = true; }
  bool takeErrorDismissed() { return std::exchange(errorDismissed_, false); }

  // Home and rooms.
  /// Back to the top level: nothing of the item is left on the screen but its picture. `refresh` lists the
  /// room of the active user if no posters are there.
  void goHome(bool refresh);
  /// The home screen has the screen, or is on its way there.
  bool atHome() const { return home_.homeMode(); }
  /// Once, before the home screen: what the scans have to tell by now, alone on the screen.
  void showScanScreen();
  /// The home screen's loop, until a user with a room was chosen or the program is to end.
  void runChooser();
  /// An item takes the screen.
  void leaveHome() { home_.leave(); }
  /// Drops what was pressed and not yet looked at.
  void discardInput();
  void selectRoomForPath(const std::filesystem::path& path);
  MediaKind roomKind() const { return roomKind_; }
  std::filesystem::path currentFolder() const { return home_.room(); }
  /// Once after each opening of the home screen or the settings over a running item, and once after its
  /// closing.
  bool takePauseToggle() { return home_.takePauseToggle() != settings_.takePauseToggle(); }
  /// Who is asked for new art: for each room once that is shown on the home screen, and while nobody is
  /// there.
  void setScanRequests(ScanRequests requests) { scanRequests_ = std::move(requests); }

 private:
  // Input: display_input.cpp.
  NavCode pump();
  NavCode pumpEvents();
  NavCode handleEvent(const SDL_Event& event);
  NavCode keyEvent(const SDL_KeyboardEvent& event, Uint64 nowMs);
  bool passesRepeatFilter(const KeyPress& press, const FocusFacts& facts) const;
  Meaning globalKey(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs);
  Meaning keyOverSettings(SDL_Keycode key, const FocusFacts& facts);
  void followTextInput();
  NavCode carryOut(Meaning meaning);
  Layer& layerWithFocus();
  void updateFocus();
  bool endLostSeek();
  NavCode heldKey(Uint64 nowMs);
  FocusFacts focusFacts() const;

  // What crosses screens.
  void openChooser();
  void openRoom(const std::filesystem::path& room);
  void enterRoom(const std::filesystem::path& room);

  void followMusic(const FrameContext& frame, const FocusFacts& facts);
  void tickTheme();
  void startScreensaver();
  void askForArt(const std::filesystem::path& room);
  void followScans();
  bool followScreensaver(const FrameContext& frame);
  void presentHome();
  void presentSettings(const FrameContext& frame);
  FrameContext frameContext() const;

  OwnerThread owner_;
  const Stored stored_;
  Clock& clock_;
  PlaybackScreen playback_;
  Screen screen_;
  Strip strip_;
  Home home_;
  MusicScreen music_;
  Settings settings_;
  Screensaver saver_;
  IdleScans idleScans_;
  std::filesystem::path roomAskedFor_;  ///< the last one, so that no pass asks again
  ScanRequests scanRequests_;
  std::function<void()> userChosen_ = [] {};
  /// The screens in the order in which they are drawn, over the picture.
  const std::array<Layer*, 5> layers_{&home_, &playback_, &strip_, &music_, &settings_};
  StatusLines statusLines_;
  ThemeChoice theme_;
  std::unique_ptr<ThemePlayer> themePlayer_;  ///< null while nobody gave it a device
  std::string_view themeSkipReason_;          ///< the last one told, or empty
  bool keepTheme_ = false;
  KeyInput keys_;
  FocusName focus_ = FocusName::Movie;  ///< the last one, to see it change
  MediaKind roomKind_ = MediaKind::Movies;
  bool errorDismissed_ = false;
};

}  // namespace tavek

#pragma once

#include <cstdint>
#include <filesystem>

#include <SDL.h>

#include "base/orientation.h"
#include "display/clear_logo.h"
#include "display/focus.h"
#include "display/frame_context.h"
#include "display/key_input.h"
#include "display/nav_code.h"
#include "display/pause_icon.h"
#include "display/picture_view.h"
#include "display/screen.h"
#include "display/seek_bar.h"
#include "display/video_picture.h"
#include "display/volume_bar.h"

namespace tavek {

/// The screen with all that lies on it, and the keys. One object from the program's start to its end, on the
/// main thread only. Without a screen every operation still works on its flags and draws nothing.
class Display {
 public:
  /// The wished place and size of the window. Failure is told on stderr and leaves usable() false.
  Display(int x, int y, int width, int height, Orientation orientation);
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
  /// Makes the file the current video.
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

  // Home and rooms.
  /// Back to the top level: nothing of the item is left on the screen but its picture.
  void goHome();
  void leaveHome() { flags_.homeMode = false; }
  void selectRoomForPath(const std::filesystem::path& path);
  MediaKind roomKind() const { return flags_.roomKind; }

 private:
  void loadClearLogo();
  void drawOverlays(const FrameContext& frame, std::int64_t positionUs);
  NavCode pumpEvents();
  NavCode handleEvent(const SDL_Event& event);
  void noteActivity(Uint64 nowMs) { lastActivityAt_ = nowMs; }

  VideoPicture picture_;
  Screen screen_;
  SeekBar seekBar_;
  VolumeBar volumeBar_;
  PauseIcon pauseIcon_;
  ClearLogo clearLogo_;

  NavFlags flags_;
  KeyInput keys_;
  std::filesystem::path currentVideo_;
  Uint64 lastActivityAt_ = 0;
};

}  // namespace tavek

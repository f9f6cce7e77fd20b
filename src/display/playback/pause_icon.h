#pragma once

#include <SDL.h>

#include "display/toolkit/fade.h"
#include "display/toolkit/frame_context.h"

namespace tavek {

/// The icon's two bars in the middle of a window.
struct PauseIconLayout {
  SDL_Rect left;
  SDL_Rect right;
};
PauseIconLayout pauseIconLayout(int width, int height);

class PauseIcon {
 public:
  /// Starts the fade at the moment of the key press; the same value again changes nothing.
  void setPaused(bool paused, Uint64 nowMs);
  void reset() { fade_ = {}; }
  /// `wanted`: the viewer has paused, and neither the home screen nor the screensaver is up.
  void draw(const FrameContext& frame, bool wanted);

 private:
  FadePair fade_;
};

}  // namespace tavek

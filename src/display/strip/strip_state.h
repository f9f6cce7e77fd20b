#pragma once

#include <SDL.h>

namespace tavek {

/// Where the poster strip stands; times are SDL_GetTicks64 milliseconds.
struct StripState {
  bool visible = false;  ///< drawn; stays set while it slides out
  bool fadeIn = false;   ///< for one frame, cleared by the frame function
  bool open = false;     ///< opened over a running picture
  bool sliding = false;
  bool slidingIn = false;
  Uint64 slideAt = 0;

  /// The strip covers the picture's lower part, or is about to.
  bool shown() const { return visible || fadeIn; }
  /// In any state but closed.
  bool any() const { return visible || fadeIn || open || sliding; }
};

}  // namespace tavek

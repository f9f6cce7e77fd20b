#pragma once

#include <SDL.h>

namespace tavek {

/// Where the poster strip stands; times are the clock's milliseconds.
struct StripState {
  bool visible = false;  ///< drawn; stays set while it slides out
  bool open = false;     ///< opened over a running picture
  bool sliding = false;
  bool slidingIn = false;
  Uint64 slideAt = 0;

  /// In any state but closed.
  bool any() const { return visible || open || sliding; }
};

}  // namespace tavek

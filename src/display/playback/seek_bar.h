#pragma once

#include <cstdint>

#include <SDL.h>

#include "display/toolkit/fade.h"
#include "display/toolkit/frame_context.h"

namespace tavek {

/// What the seek bar needs to know of a frame. A negative position means that it is not known.
struct SeekBarInput {
  std::int64_t positionUs = -1;
  bool videoPaused = false;
  bool seekFocus = false;   ///< a seek key is down
  bool stripShown = false;  ///< the poster strip takes the bar's place
};

/// Sizes of the bar's three texts; all zero when there is no font.
struct SeekBarTexts {
  SDL_Point position{};
  SDL_Point duration{};
  SDL_Point remaining{};
};

/// Where the bar's parts lie in a window: top left corners of the texts, the middle of the knob.
struct SeekBarLayout {
  SDL_Rect track;
  SDL_Rect played;
  SDL_Point knob;
  SDL_Point position;
  SDL_Point duration;
  SDL_Point remaining;
};
SeekBarLayout seekBarLayout(int width, int height, double ratio, const SeekBarTexts& sizes);

/// The bar with the playing position and three times at the lower edge of the picture. It stands while a seek
/// key is down or the item is paused, else for half a second after the last call for it, and then fades.
class SeekBar {
 public:
  /// The length of a new item; 0 or less keeps the bar off.
  void setDuration(std::int64_t us);
  std::int64_t durationUs() const { return durationUs_; }

  void show(Uint64 nowMs);
  /// A seek key went down: the bar may show, but a fade that runs goes on.
  void touch(Uint64 nowMs);
  void clearActivity() { activityAt_ = 0; }
  /// No item any more.
  void reset();

  void draw(const FrameContext& frame, const SeekBarInput& input);

 private:
  double advance(const SeekBarInput& input, Uint64 nowMs);

  std::int64_t durationUs_ = 0;
  Uint64 activityAt_ = 0;  ///< when the bar was last asked for; 0 keeps it off
  Uint64 heldAt_ = 0;      ///< last frame with a seek key down, or the last call for the bar
  FadePair fade_;
};

}  // namespace tavek

#pragma once

#include <array>

#include <SDL.h>

#include "display/toolkit/background_image.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/music_art.h"

namespace tavek {

/// Where the backdrop lies, which drifts slowly.
SDL_Rect driftingBackdrop(SDL_Point window, SDL_Point size, double seconds);

/// The three lines' places, from their sizes, at the lower left.
struct MusicTextSizes {
  int margin;
  int title;  ///< of the font
  int other;
};
MusicTextSizes musicTextSizes(SDL_Point window);
std::array<SDL_Point, 3> placeMusicText(SDL_Point window, const std::array<SDL_Point, 3>& sizes);

/// The screensaver of music: the backdrop, the track's text and the album's art. Main thread only.
class MusicVariant {
 public:
  /// `strength`: of words and art; the backdrop is opaque.
  void draw(const FrameContext& frame, const MusicArt& art, double strength);
  void drop() { albumArt_.drop(); }

 private:
  void drawAlbumArt(const FrameContext& frame, const MusicArt& art, Uint8 alpha);

  BackgroundImage albumArt_;
};

}  // namespace tavek

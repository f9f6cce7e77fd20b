#pragma once

#include <cstdint>

#include <SDL.h>

#include "base/orientation.h"
#include "display/playback/picture_view.h"
#include "display/toolkit/frame_context.h"
#include "display/toolkit/sdl_handles.h"

namespace tavek {

/// The strength of a picture that fades in since `startMs`, or out; a fade that is over says so.
/// Milliseconds.
struct PictureFade {
  bool active = false;
  Uint64 startMs = 0;

  void start(Uint64 nowMs) { *this = {.active = true, .startMs = nowMs}; }
  double fadeIn(Uint64 nowMs);
  double fadeOut(Uint64 nowMs);
};

/// The bottom layer of the screen: the one streaming texture, how it lies, and its fades. Main thread only.
class VideoPicture {
 public:
  explicit VideoPicture(Orientation orientation) : orientation_(orientation) {}

  /// The texture at its first size; false with SDL's error set.
  bool create(SDL_Renderer* renderer, int width, int height);
  /// Brings the picture into the texture, which follows its size. False when that failed: skip the frame.
  bool upload(SDL_Renderer* renderer, const PictureView& picture);
  void draw(const FrameContext& frame, const PictureView& picture);
  void destroy() { texture_.reset(); }

  PictureFade fadeIn;
  PictureFade fadeOut;

 private:
  void copy(SDL_Renderer* renderer, const PictureView& picture, SDL_Point window);

  Orientation orientation_;
  TexturePtr texture_;
  int width_ = 0;
  int height_ = 0;
  SDL_ScaleMode scaleMode_ = SDL_ScaleModeNearest;  ///< what the renderer's hint asks for
  std::uint64_t serial_ = 0;                        ///< of the picture in the texture
};

}  // namespace tavek

#pragma once

#include <SDL.h>
#include <SDL_ttf.h>

namespace tavek {

/// What drawing one frame needs from outside: borrowed handles, the window's size in pixels, and the tick
/// counter in milliseconds, read once per frame. Renderer and font may be null; then nothing is drawn with
/// them.
struct FrameContext {
  SDL_Renderer* renderer = nullptr;
  TTF_Font* baseFont = nullptr;
  int width = 0;
  int height = 0;
  Uint64 nowMs = 0;
};

}  // namespace tavek

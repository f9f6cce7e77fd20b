#pragma once

#include <SDL.h>
#include <SDL_ttf.h>

#include "display/toolkit/sdl_handles.h"

namespace tavek {

class VideoPicture;

/// SDL with its window, renderer and base font. Usable, or empty with everything null: a screen that does not
/// come up is told on stderr and never thrown. Main thread only.
class Screen {
 public:
  /// The size is a wish; a KMSDRM display has its own. Makes the video texture of the picture too.
  Screen(SDL_Rect wish, VideoPicture& picture);
  /// All textures have to be gone before.
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  /// Leaves SDL and its libraries up when this goes.
  void keepLibraries() { keepsLibraries_ = true; }

  SDL_Window* window() const { return window_.get(); }
  SDL_Renderer* renderer() const { return renderer_.get(); }
  TTF_Font* baseFont() const { return baseFont_.get(); }

 private:
  // Each gives the reason of its failure, or null.
  const char* build(SDL_Rect wish, VideoPicture& picture);
  const char* startLibraries();
  const char* createWindow(SDL_Rect place, bool kmsdrm, bool software);
  const char* createGlContext();
  void openBaseFont();

  bool keepsLibraries_ = false;
  WindowPtr window_;
  RendererPtr renderer_;
  GlContextPtr glContext_;
  FontPtr baseFont_;
};

}  // namespace tavek

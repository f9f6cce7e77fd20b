#pragma once

#include <SDL.h>
#include <SDL_image.h>
#include <SDL_ttf.h>

#include "display/toolkit/colour.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/sdl_handles.h"
#include "display/toolkit/text.h"

/// Drawing without a screen: SDL's offscreen driver gives a real renderer with no display server.
namespace tavek::test {

/// Has to stand before SDL_Init; a Display that a test builds needs it too.
inline void useOffscreenDriver() {
  SDL_setenv("SDL_VIDEODRIVER", "offscreen", 1);
}

/// A part of the frame in progress, row by row, each pixel with an alpha of 255.
inline std::vector<Colour> pixelsOf(SDL_Renderer* renderer, const SDL_Rect& area) {
  std::vector<Colour> pixels(static_cast<std::size_t>(area.w) * static_cast<std::size_t>(area.h));
  SDL_RenderReadPixels(renderer, &area, SDL_PIXELFORMAT_RGBA32, pixels.data(), 4 * area.w);
  for (Colour& pixel : pixels) pixel = withAlpha(pixel, 255);
  return pixels;
}

inline Colour pixelAt(SDL_Renderer* renderer, int x, int y) {
  return pixelsOf(renderer, {x, y, 1, 1}).front();
}

/// A picture of one colour, as the bytes of a file.
inline std::string png(int width, int height, Colour colour = theme::white) {
  const SurfacePtr surface(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_RGBA32));
  SDL_FillRect(surface.get(), nullptr, colour);
  std::string bytes(100'000, '\0');
  SDL_RWops* stream = SDL_RWFromMem(bytes.data(), static_cast<int>(bytes.size()));
  IMG_SavePNG_RW(surface.get(), stream, 0);
  bytes.resize(static_cast<std::size_t>(SDL_RWtell(stream)));
  SDL_RWclose(stream);
  return bytes;
}

/// A window of a size, cleared to black, with the base font.
class Offscreen {
 public:
  explicit Offscreen(int width = 1280, int height = 720) : whole_{0, 0, width, height} {
    useOffscreenDriver();
    SDL_Init(SDL_INIT_VIDEO);
    TTF_Init();
    window_.reset(SDL_CreateWindow("test", 0, 0, width, height, SDL_WINDOW_OPENGL | SDL_WINDOW_BORDERLESS));
    renderer_.reset(SDL_CreateRenderer(window_.get(), -1, 0));
    font_ = openRegularFont(20);
    clear();
  }
  ~Offscreen() {
    dropTextCache();
    font_.reset();
    renderer_.reset();
    window_.reset();
    closeFonts();
    TTF_Quit();
    SDL_Quit();
  }

  SDL_Renderer* renderer() const { return renderer_.get(); }
  TTF_Font* font() const { return font_.get(); }

  void clear(Colour colour = theme::black) const {
    setDrawColour(renderer(), colour);
    SDL_RenderClear(renderer());
  }
  Colour pixel(int x, int y) const { return pixelAt(renderer(), x, y); }

  /// The smallest rectangle round all pixels that are not black; empty if there is none.
  SDL_Rect drawnArea() const {
    const std::vector<Colour> pixels = pixelsOf(renderer(), whole_);
    SDL_Rect area{}, point{0, 0, 1, 1};
    for (const Colour pixel : pixels) {
      if (pixel != theme::black) SDL_UnionRect(&area, &point, &area);
      if (++point.x == whole_.w) point = {0, point.y + 1, 1, 1};
    }
    return area;
  }

 private:
  SDL_Rect whole_;
  WindowPtr window_;
  RendererPtr renderer_;
  FontPtr font_;
};

}  // namespace tavek::test

/// Lets expectations compare rectangles.
inline bool operator==(const SDL_Rect& a, const SDL_Rect& b) {
  return a.x == b.x && a.y == b.y && a.w == b.w && a.h == b.h;
}

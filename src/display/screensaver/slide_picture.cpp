#include "display/screensaver/slide_picture.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "display/screensaver/saver_rules.h"
#include "display/toolkit/image_file.h"

namespace tavek {
namespace {

/// Somewhat larger than the window, of which an edge is cut off.
constexpr double slideScale = 1.01;

SurfacePtr enlargedTo(SurfacePtr picture, SDL_Point area) {
  const double scale =
      std::max(static_cast<double>(area.x) / picture->w, static_cast<double>(area.y) / picture->h);
  if (scale <= 1) return picture;
  SurfacePtr large(SDL_CreateRGBSurfaceWithFormat(0, static_cast<int>(std::ceil(picture->w * scale)),
                                                  static_cast<int>(std::ceil(picture->h * scale)), 32,
                                                  picture->format->format));
  if (!large || SDL_SoftStretchLinear(picture.get(), nullptr, large.get(), nullptr) != 0) return {};
  return large;
}

}  // namespace

SurfacePtr slidePicture(const std::filesystem::path& file, SDL_Point window) {
  const SDL_Point area{static_cast<int>(std::ceil(window.x * slideScale)),
                       static_cast<int>(std::ceil(window.y * slideScale))};
  SurfacePtr picture = fittedTo(loadImage(file), area, Fit::Cover);
  if (picture) picture = enlargedTo(std::move(picture), area);
  if (!picture) return {};
  SurfacePtr slide(SDL_CreateRGBSurfaceWithFormat(0, window.x, window.y, 32, SDL_PIXELFORMAT_RGB888));
  if (!slide) return {};
  SDL_FillRect(slide.get(), nullptr, 0);
  SDL_SetSurfaceBlendMode(picture.get(), SDL_BLENDMODE_BLEND);
  SDL_SetSurfaceAlphaMod(picture.get(), slideAlpha);
  SDL_Rect place{(window.x - picture->w) / 2, (window.y - picture->h) / 2, 0, 0};
  SDL_BlitSurface(picture.get(), nullptr, slide.get(), &place);
  return slide;
}

}  // namespace tavek

#include "display/strip/poster_tile.h"

#include <algorithm>
#include <cmath>

namespace tavek {
namespace {

constexpr SDL_Point placeholderSize{320, 480};
constexpr int placeholderTextWidth = 272;
constexpr SDL_Color placeholderText{230, 230, 230, 255};
constexpr int albumSide = 360;
constexpr int coverSide = 320;

SurfacePtr plainTile(SDL_Point size) {
  SurfacePtr tile(SDL_CreateRGBSurfaceWithFormat(0, size.x, size.y, 32, SDL_PIXELFORMAT_RGBA32));
  if (tile) SDL_FillRect(tile.get(), nullptr, SDL_MapRGBA(tile->format, 26, 26, 26, 255));
  return tile;
}

SDL_Rect centred(const SDL_Surface& tile, int width, int height) {
  return {(tile.w - width) / 2, (tile.h - height) / 2, width, height};
}

int coverLength(int length, double factor) {
  return std::max(1, static_cast<int>(std::lround(length * factor)));
}

}  // namespace

SurfacePtr makePlaceholder(const std::string& name, TTF_Font* font) {
  SurfacePtr tile = plainTile(placeholderSize);
  if (!tile || font == nullptr || name.empty()) return tile;
  const SurfacePtr text(
      TTF_RenderUTF8_Blended_Wrapped(font, name.c_str(), placeholderText, placeholderTextWidth));
  if (!text) return tile;
  SDL_Rect place = centred(*tile, text->w, text->h);
  SDL_BlitSurface(text.get(), nullptr, tile.get(), &place);
  return tile;
}

SurfacePtr makeAlbumTile(SurfacePtr cover) {
  SurfacePtr tile = plainTile({albumSide, albumSide});
  if (!tile || !cover) return tile;
  const double factor =
      std::min(static_cast<double>(coverSide) / cover->w, static_cast<double>(coverSide) / cover->h);
  SDL_Rect place = centred(*tile, coverLength(cover->w, factor), coverLength(cover->h, factor));
  SDL_BlitScaled(cover.get(), nullptr, tile.get(), &place);
  return tile;
}

}  // namespace tavek

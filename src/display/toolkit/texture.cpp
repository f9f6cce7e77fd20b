#include "display/toolkit/texture.h"

#include <algorithm>

namespace tavek {
namespace {

bool isMultiple(int shown, int size) {
  return size > 0 && shown >= size && shown % size == 0;
}

}  // namespace

SDL_ScaleMode scaleModeFor(SDL_Point size, SDL_Point shown, SDL_ScaleMode hinted) {
  if (size.x == shown.x && size.y == shown.y) return SDL_ScaleModeNearest;
  if (isMultiple(shown.x, size.x) && isMultiple(shown.y, size.y)) return hinted;
  return std::max(hinted, SDL_ScaleModeLinear);
}

void copyTexture(SDL_Renderer* renderer, SDL_Texture* texture, const SDL_Rect& place) {
  SDL_Point size{};
  SDL_ScaleMode hinted = SDL_ScaleModeNearest;
  if (SDL_QueryTexture(texture, nullptr, nullptr, &size.x, &size.y) != 0) return;
  SDL_GetTextureScaleMode(texture, &hinted);
  SDL_SetTextureScaleMode(texture, scaleModeFor(size, {place.w, place.h}, hinted));
  SDL_RenderCopy(renderer, texture, nullptr, &place);
  SDL_SetTextureScaleMode(texture, hinted);
}

}  // namespace tavek

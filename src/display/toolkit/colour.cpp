#include "display/toolkit/colour.h"

#include <algorithm>
#include <cmath>

namespace tavek {

Colour scaleAlpha(Colour colour, double factor) {
  if (factor >= 0.999) return colour;
  return withAlpha(colour, static_cast<std::uint8_t>(std::lround(alphaOf(colour) * std::max(0.0, factor))));
}

void setDrawColour(SDL_Renderer* renderer, Colour colour) {
  SDL_SetRenderDrawColor(renderer, redOf(colour), greenOf(colour), blueOf(colour), alphaOf(colour));
}

void setFadedDrawColour(double factor, SDL_Renderer* renderer, Colour colour) {
  setDrawColour(renderer, scaleAlpha(colour, factor));
}

}  // namespace tavek

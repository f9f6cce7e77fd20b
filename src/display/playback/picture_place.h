#pragma once

#include <SDL.h>

#include "base/orientation.h"

namespace tavek {

/// How the picture lies in the window: the rectangle of the unturned picture and the clockwise angle by which
/// it is turned about the rectangle's middle, 0, 90, 180 or 270 degrees.
struct PicturePlace {
  SDL_Rect rect{};
  int angle = 0;
};

/// `sampleAspect` is the width of a sample over its height, above 0. A turned picture keeps its proportions.
PicturePlace placePicture(Orientation orientation, SDL_Point window, SDL_Point frame, double sampleAspect);

}  // namespace tavek

#pragma once

#include <filesystem>

#include <SDL.h>

#include "display/toolkit/sdl_handles.h"

namespace tavek {

/// A slide as it stands: over a whole window of a size, at half strength on black, an edge cut off. So each
/// frame of it is a plain copy. Null for what cannot be decoded. Any thread; it takes a tenth of a second.
SurfacePtr slidePicture(const std::filesystem::path& file, SDL_Point window);

}  // namespace tavek

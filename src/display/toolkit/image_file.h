#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

#include <SDL.h>

#include "display/toolkit/sdl_handles.h"

/// Pictures from files that nobody has vetted: they may be cut short, or claim a size that no machine can
/// hold. May be called from every thread, once SDL_image is initialised.
namespace tavek {

/// The width and height that the head of a JPEG, PNG, WebP or GIF file tells; none for anything else.
std::optional<SDL_Point> pictureSizeOf(std::span<const std::byte> bytes);

/// The picture, or null with the reason in SDL_GetError. Decodes nothing of more than 64 million pixels.
SurfacePtr loadImage(const std::filesystem::path& file);

/// How a picture lies in an area, in its proportions.
enum class Fit {
  Inside,  ///< all of it, with room left over
  Cover,   ///< all of the area, with parts of the picture beyond it
};

/// The picture as RGBA32, made smaller to fit; never larger. Null for null, and without memory.
SurfacePtr fittedToHeight(SurfacePtr picture, int height);
SurfacePtr fittedTo(SurfacePtr picture, SDL_Point area, Fit fit);

}  // namespace tavek

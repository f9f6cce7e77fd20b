#pragma once

#include <string>

#include <SDL.h>
#include <SDL_ttf.h>

#include "display/toolkit/sdl_handles.h"

/// The tiles that are painted rather than read from a file. Null when there is no memory for one.
namespace tavek {

/// A dark tile with a name on it; a plain one without a font. The font is the caller's alone during the call.
SurfacePtr makePlaceholder(const std::string& name, TTF_Font* font);
/// A square tile with the cover in its middle, or a plain one.
SurfacePtr makeAlbumTile(SurfacePtr cover);

}  // namespace tavek

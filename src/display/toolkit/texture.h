#pragma once

#include <SDL.h>

namespace tavek {

/// How a picture of a size is to be scaled to another: not at all where each pixel meets its own; at a whole
/// multiple as the renderer's hint says; otherwise smoothly, since nothing else keeps edges even.
SDL_ScaleMode scaleModeFor(SDL_Point size, SDL_Point shown, SDL_ScaleMode hinted);

/// SDL_RenderCopy of a whole texture by that rule.
void copyTexture(SDL_Renderer* renderer, SDL_Texture* texture, const SDL_Rect& place);

}  // namespace tavek

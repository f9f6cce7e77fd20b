#pragma once

#include <memory>
#include <mutex>

#include <SDL.h>
#include <SDL_ttf.h>

/// Owners of SDL's handles. Textures go before their renderer, a renderer before its window, and fonts before
/// TTF_Quit; the owner of several has to declare or reset them in that order.
namespace tavek {

struct SdlDeleter {
  void operator()(SDL_Window* window) const { SDL_DestroyWindow(window); }
  void operator()(SDL_Renderer* renderer) const { SDL_DestroyRenderer(renderer); }
  void operator()(SDL_Texture* texture) const { SDL_DestroyTexture(texture); }
  void operator()(SDL_Surface* surface) const { SDL_FreeSurface(surface); }
  void operator()(TTF_Font* font) const;
};

/// Held while a font is opened or closed, since those of all threads hang on one library.
inline std::mutex fontLock;

inline void SdlDeleter::operator()(TTF_Font* font) const {
  const std::lock_guard held(fontLock);
  TTF_CloseFont(font);
}

/// SDL_GLContext is a plain void*, so it can't share the overloads above.
struct GlContextDeleter {
  void operator()(void* context) const { SDL_GL_DeleteContext(context); }
};

using WindowPtr = std::unique_ptr<SDL_Window, SdlDeleter>;
using RendererPtr = std::unique_ptr<SDL_Renderer, SdlDeleter>;
using TexturePtr = std::unique_ptr<SDL_Texture, SdlDeleter>;
using SurfacePtr = std::unique_ptr<SDL_Surface, SdlDeleter>;
using FontPtr = std::unique_ptr<TTF_Font, SdlDeleter>;
using GlContextPtr = std::unique_ptr<void, GlContextDeleter>;

}  // namespace tavek

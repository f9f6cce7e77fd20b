#include "display/screen.h"

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <system_error>

#include <SDL_image.h>

#include "base/console.h"
#include "base/paths.h"
#include "display/playback/video_picture.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

void complain(const char* call) {
  std::cerr << console::red << call << console::reset << std::endl;
}

/// Tells of the failed call and gives SDL's reason for it.
const char* failed(const char* call) {
  complain(call);
  return SDL_GetError();
}

const char* orUnknown(const char* name) {
  return name != nullptr ? name : "?";
}

const char* yesNo(Uint32 flag) {
  return flag != 0 ? "yes" : "no";
}

/// A GL that the processor has to draw costs several times what SDL's own software renderer does for a film,
/// so that one is taken where there is no graphics device, unless SDL's environment variable says otherwise.
bool drawsWithoutGl() {
  if (const char* wanted = SDL_GetHint(SDL_HINT_RENDER_DRIVER)) return std::string_view(wanted) == "software";
  std::error_code ignored;
  return !std::filesystem::exists("/dev/dri", ignored);
}

void setHints(bool kmsdrm, bool software) {
  if (kmsdrm) {
    SDL_SetHint(SDL_HINT_RENDER_DRIVER, "opengles2");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "1");
  } else if (software) {
    SDL_SetHint(SDL_HINT_RENDER_DRIVER, "software");
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
  }
  SDL_SetHint(SDL_HINT_RENDER_BATCHING, "1");
  SDL_SetHintWithPriority(SDL_HINT_RENDER_SCALE_QUALITY, kmsdrm ? "0" : "best", SDL_HINT_OVERRIDE);
}

/// SDL falls back to drivers that show nothing. Those are meant only where they are named.
bool canBeSeen(std::string_view driver) {
  const char* named = SDL_getenv("SDL_VIDEODRIVER");
  const bool shows = driver != "offscreen" && driver != "dummy";
  return shows || (named != nullptr && std::string_view(named).find(driver) != std::string_view::npos);
}

SDL_Rect placeOf(SDL_Rect wish, bool kmsdrm) {
  SDL_Rect bounds{};
  const bool known = kmsdrm && SDL_GetDisplayBounds(0, &bounds) == 0 && bounds.w > 0 && bounds.h > 0;
  return known ? bounds : wish;
}

void describeRenderer(SDL_Renderer* renderer, const char* driver, bool kmsdrm) {
  SDL_RendererInfo info{};
  if (SDL_GetRendererInfo(renderer, &info) != 0) return;
  std::cout << "[RENDERER] video_driver=" << driver << " renderer=" << orUnknown(info.name)
            << " accelerated=" << yesNo(info.flags & SDL_RENDERER_ACCELERATED)
            << " vsync=" << yesNo(info.flags & SDL_RENDERER_PRESENTVSYNC)
            << " texture_formats=" << info.num_texture_formats << std::endl;
  if (kmsdrm && (info.flags & SDL_RENDERER_ACCELERATED) == 0) {
    std::cerr << console::boldRed << "KMSDRM renderer is not accelerated; performance will be poor. "
              << "Check Mesa/VC4 drivers and SDL build for GLES2 support." << console::reset << std::endl;
  }
}

}  // namespace

Screen::Screen(SDL_Rect wish, VideoPicture& picture) {
  const char* reason = build(wish, picture);
  if (reason == nullptr) return;
  std::cerr << console::boldRed << "WINDOW Exception: " << reason << console::reset << std::endl;
  picture.destroy();
  glContext_.reset();
  renderer_.reset();
  window_.reset();
  baseFont_.reset();
  SDL_Quit();
}

Screen::~Screen() {
  dropTextCache();
  glContext_.reset();
  renderer_.reset();
  window_.reset();
  baseFont_.reset();
  closeFonts();
  SDL_ShowCursor(SDL_ENABLE);
  if (keepsLibraries_) return;
  SDL_QuitSubSystem(SDL_INIT_EVENTS);
  SDL_QuitSubSystem(SDL_INIT_TIMER);
  SDL_QuitSubSystem(SDL_INIT_VIDEO);
  if (TTF_WasInit() != 0) TTF_Quit();
  IMG_Quit();
  SDL_Quit();
}

const char* Screen::build(SDL_Rect wish, VideoPicture& picture) {
  if (const char* reason = startLibraries()) return reason;
  openBaseFont();
  const char* driver = SDL_GetCurrentVideoDriver();
  if (driver == nullptr || !canBeSeen(driver)) return "No video driver.";
  const bool kmsdrm = SDL_strcasecmp(driver, "kmsdrm") == 0;
  SDL_ShowCursor(SDL_DISABLE);
  const bool software = !kmsdrm && drawsWithoutGl();
  setHints(kmsdrm, software);
  const SDL_Rect place = placeOf(wish, kmsdrm);
  if (const char* reason = createWindow(place, kmsdrm, software)) return reason;
  describeRenderer(renderer_.get(), driver, kmsdrm);
  SDL_RenderSetLogicalSize(renderer_.get(), place.w, place.h);
  SDL_SetRenderDrawColor(renderer_.get(), 0, 0, 0, SDL_ALPHA_OPAQUE);
  if (!kmsdrm && !software) {
    if (const char* reason = createGlContext()) return reason;
  }
  return picture.create(renderer_.get(), place.w, place.h) ? nullptr : failed("SDL_CreateTextureFromSurface");
}

const char* Screen::startLibraries() {
  if (SDL_Init(SDL_INIT_TIMER | SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) return failed("SDL_Init");
  // Nothing that was typed before the start reaches the program.
  SDL_Event event;
  while (SDL_PollEvent(&event) != 0) {
  }
  if (IMG_Init(IMG_INIT_JPG | IMG_INIT_PNG) == 0) return failed("IMG_Init");
  if (TTF_Init() != 0) complain("TTF_Init");
  return nullptr;
}

void Screen::openBaseFont() {
  constexpr int baseFontSize = 20;
  const std::filesystem::path face = fontFolder() / "Lato-Regular.ttf";
  std::error_code ignored;
  if (!std::filesystem::exists(face, ignored)) {
    std::cerr << console::yellow << "Lato font not found" << console::reset << std::endl;
    return;
  }
  baseFont_.reset(TTF_OpenFont(face.c_str(), baseFontSize));
  if (!baseFont_) {
    std::cerr << console::red << "TTF_OpenFont" << console::reset << " (" << face.string() << ")"
              << std::endl;
  }
}

const char* Screen::createWindow(SDL_Rect place, bool kmsdrm, bool software) {
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_ES);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 0);
  const Uint32 flags = SDL_WINDOW_BORDERLESS | (software ? 0U : Uint32{SDL_WINDOW_OPENGL}) |
                       (kmsdrm ? Uint32{SDL_WINDOW_FULLSCREEN_DESKTOP} : 0U);
  window_.reset(SDL_CreateWindow("play", place.x, place.y, place.w, place.h, flags));
  if (!window_) return failed("SDL_CreateWindow");
  renderer_.reset(
      SDL_CreateRenderer(window_.get(), -1, SDL_RENDERER_ACCELERATED | SDL_RENDERER_PRESENTVSYNC));
  if (renderer_) return nullptr;
  const char* reason = failed("SDL_CreateRenderer");
  std::cerr << "Renderer error: " << reason << std::endl;
  return reason;
}

const char* Screen::createGlContext() {
  glContext_.reset(SDL_GL_CreateContext(window_.get()));
  if (!glContext_) return failed("SDL_GL_CreateContext");
  SDL_GL_MakeCurrent(window_.get(), glContext_.get());
  if (SDL_GL_SetSwapInterval(1) != 0) std::printf("Warning: Unable to set V-Sync: %s\n", SDL_GetError());
  return nullptr;
}

}  // namespace tavek

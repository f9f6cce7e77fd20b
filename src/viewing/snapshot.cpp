#include "viewing/snapshot.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include <SDL_image.h>

#include "base/paths.h"
#include "display/toolkit/sdl_handles.h"
#include "media/conversion.h"

extern "C" {
#include <libavutil/frame.h>
}

namespace tavek {
namespace {

namespace fs = std::filesystem;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

std::string nameOfNow() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  std::array<char, 64> name{};
  std::snprintf(name.data(), name.size(), "%04d-%02d-%02d_%02d-%02d-%02d", local.tm_year + 1900,
                local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
  return name.data();
}

/// A second picture within one second gets a number behind its name.
FilePtr createNew(const fs::path& folder, fs::path& created) {
  const std::string name = nameOfNow();
  for (int number = 1; number < 100; ++number) {
    created = folder / (name + (number == 1 ? "" : "-" + std::to_string(number)) + ".png");
    FilePtr file(std::fopen(created.c_str(), "wbx"));
    std::error_code ignored;
    if (file || !fs::exists(created, ignored)) return file;
  }
  return nullptr;
}

SurfacePtr surfaceOf(const AVFrame& picture) {
  SurfacePtr surface(
      SDL_CreateRGBSurfaceWithFormat(0, picture.width, picture.height, 24, SDL_PIXELFORMAT_RGB24));
  const ffmpeg::FramePtr rgb = ffmpeg::makeFrame();
  if (!surface || !rgb) return nullptr;
  rgb->data[0] = static_cast<std::uint8_t*>(surface->pixels);
  rgb->linesize[0] = surface->pitch;
  rgb->format = AV_PIX_FMT_RGB24;
  convertOnce(picture, *rgb, SWS_BILINEAR);
  return surface;
}

}  // namespace

void saveSnapshot(const AVFrame& picture) try {
  const fs::path folder = mediaRoot() / "movies" / "snapshots";
  std::error_code error;
  fs::create_directories(folder, error);
  const SurfacePtr surface = surfaceOf(picture);
  fs::path path;
  const FilePtr file = surface ? createNew(folder, path) : nullptr;
  if (!file) return;
  SDL_RWops* target = SDL_RWFromFP(file.get(), SDL_FALSE);
  const bool saved = IMG_SavePNG_RW(surface.get(), target, 1) == 0 && std::fflush(file.get()) == 0;
  if (!saved) fs::remove(path, error);
} catch (const std::exception&) {
  // Without memory for it there is no snapshot, and the film goes on.
}

}  // namespace tavek

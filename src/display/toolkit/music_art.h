#pragma once

#include <array>
#include <filesystem>
#include <string>

#include <SDL.h>

namespace tavek {

/// What there is to show of a song, lent by its screen for one frame.
struct MusicArt {
  SDL_Texture* backdrop = nullptr;
  SDL_Point size{};
  std::filesystem::path albumArt;    ///< empty without one
  std::array<std::string, 3> lines;  ///< title, artist and album, year
};

}  // namespace tavek

#pragma once

#include <array>
#include <filesystem>
#include <string>

#include <SDL.h>

namespace tavek {

/// What the music screen tells of the track that plays, for whoever else shows it. Valid during one frame.
struct MusicArt {
  SDL_Texture* backdrop = nullptr;  ///< not owned; null without one
  SDL_Point size{};                 ///< of the backdrop
  std::filesystem::path albumArt;   ///< empty without one
  /// The title, "artist — album", the year; empty where it is not known.
  std::array<std::string, 3> lines;
};

}  // namespace tavek

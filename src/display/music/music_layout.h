#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include <SDL.h>

#include "library/track_info.h"

/// Where the music screen puts its texts, and what they say. Pixels.
namespace tavek {

inline constexpr int trackLineGap = 6;

using TrackLines = std::array<std::string, 3>;

/// Title, "artist - album", and "Track 3 | 04:05 | 1999"; each without what is not known. A file that tells
/// no title is called by its name.
TrackLines trackLines(const std::filesystem::path& file, const std::optional<TrackInfo>& info);

/// What is left of them while nobody is at the screen: title, "artist — album", year.
TrackLines restingLines(const std::filesystem::path& file, const std::optional<TrackInfo>& info);

int titleFontSize(int windowHeight);
int detailFontSize(int windowHeight);
int columnFontSize(int windowHeight);

/// What the lines keep from the left edge, at least.
int trackMargin(int windowWidth);
/// The top of a block of lines of that height: of what plays, and of what stands on the strip or, without
/// one, on the window's lower edge.
int nowPlayingTop(SDL_Point window, int blockHeight);
int blockTopAbove(SDL_Point window, int edge, int blockHeight);

/// The column of an album's tracks.
struct ColumnLayout {
  SDL_Rect panel{};
  std::size_t first = 0;  ///< track in the top row
  std::size_t rows = 0;
};

inline constexpr int columnInset = 10;

/// Its panel stands on `edge`, with the current track in the middle where there are more than rows.
ColumnLayout layoutColumn(SDL_Point window, int edge, int lineHeight, std::size_t tracks,
                          std::size_t current);

}  // namespace tavek

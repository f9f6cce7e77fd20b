#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/process_flags.h"

/// An album is a folder that directly holds tracks. All of this walks the disk: any thread but the main one.
namespace tavek {

struct AlbumTrack {
  std::filesystem::path path;
  std::string title;    ///< of the tags, else the file's stem
  std::string number;   ///< as written, of the tags, else the first digits of the stem
  int numberValue = 0;  ///< 0 without a number
};

enum class TagReading { Known /*what was read before*/, Read };

/// Numbered tracks by their numbers, the others behind them by their names.
bool albumOrderLess(const AlbumTrack& a, const AlbumTrack& b);
/// The tracks of the folder that holds the file, in that order. What `stop` cuts short is not complete.
std::vector<AlbumTrack> albumTracks(const std::filesystem::path& file, TagReading reading, const Flag& stop);
/// The track so many places on, or back; none beyond the ends, and for a file that the album does not list.
std::optional<std::filesystem::path> neighbourTrack(const std::filesystem::path& file, int step,
                                                    const Flag& stop);

/// By folder; an empty path for one that has no cover.
using CoverCache = std::unordered_map<std::string, std::filesystem::path>;
/// The cover picture beside a track.
std::optional<std::filesystem::path> findAlbumCover(CoverCache& cache, const std::filesystem::path& track);
/// The logo above the album's folder.
std::optional<std::filesystem::path> findAlbumLogo(const std::filesystem::path& file);

}  // namespace tavek

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/process_flags.h"
#include "library/match_key.h"

/// What the tiles of an open folder are, and in which order.
namespace tavek {

enum class ListingKind { Series, Seasons, Episodes, Videos /*films and videos*/, Albums };

/// Paths are texts here, since a std::filesystem::path costs too much for each of ten thousand.
struct ListedPoster {
  /// The tile's identity: the folder's poster.jpg (which need not exist) for a series or a season, the image
  /// of a film or video, the episode's file, or the first track of an album.
  std::string path;
  std::string media;  ///< what plays for it; empty if unknown, and for a series or a season
  MatchKey key;       ///< of the path
  std::string image;  ///< what to decode for it, which need not exist; empty for an album without a cover
  std::string label;  ///< for a tile without an image: the folder's name, or the episode's stem
  /// Tells the tile of an episode, which is a file to play, from that of a season, which is a folder to open:
  /// a listing of seasons ends with the episodes that lie beside them.
  bool isEpisode = false;
};

struct PosterListing {
  ListingKind kind = ListingKind::Videos;
  std::vector<ListedPoster> posters;
};

/// Walks the disk once and opens no file. Returns what it has when `stop` is set, and on any error of the
/// disk.
PosterListing listPosters(const std::filesystem::path& folder, const Flag& stop);

/// What the debug lines call the members of a listing, "season folders".
const char* listingNoun(ListingKind kind);

}  // namespace tavek

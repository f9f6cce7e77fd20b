#include "library/next_item.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "base/text.h"
#include "library/album.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

struct EpisodeEntry {
  fs::path path;
  SeasonEpisode number;
  std::string nameKey;  ///< the lower-cased stem
};

bool samePath(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return a == b || fs::equivalent(a, b, ignored);
}

/// The show's folder below the room, or the room itself for an episode that lies there.
fs::path scanFolderOf(const fs::path& path, const fs::path& root) {
  for (const fs::path& part : path.lexically_relative(root)) {
    if (part.empty() || part == ".") continue;
    std::error_code ignored;
    return fs::is_directory(root / part, ignored) ? root / part : root;
  }
  return root;
}

std::vector<EpisodeEntry> episodesUnder(const fs::path& folder, const Flag& stop) {
  std::vector<EpisodeEntry> episodes;
  walkBelow(folder, stop, [&](const fs::recursive_directory_iterator& entry) {
    const std::string stem = entry->path().stem().string();
    const auto number = parseSeasonEpisode(stem);
    if (number && isFilm(entry->path()) && isRegularFile(*entry)) {
      episodes.push_back({entry->path(), *number, toLower(stem)});
    }
    return true;
  });
  const auto order = [](const EpisodeEntry& e) {
    return std::tie(e.number.season, e.number.episode, e.nameKey);
  };
  std::stable_sort(episodes.begin(), episodes.end(),
                   [&](const EpisodeEntry& a, const EpisodeEntry& b) { return order(a) < order(b); });
  return episodes;
}

std::optional<fs::path> nextEpisode(const fs::path& path, const fs::path& root, SeasonEpisode number,
                                    const Flag& stop) {
  const std::vector<EpisodeEntry> episodes = episodesUnder(scanFolderOf(path, root), stop);
  auto current = std::find_if(episodes.begin(), episodes.end(),
                              [&](const EpisodeEntry& e) { return samePath(e.path, path); });
  if (current == episodes.end()) {
    current = std::find_if(episodes.begin(), episodes.end(), [&](const EpisodeEntry& e) {
      return e.number.season == number.season && e.number.episode == number.episode;
    });
  }
  if (current == episodes.end() || ++current == episodes.end()) return {};
  return current->path;
}

/// In the album's order; by the name for one that the album does not list any more.
std::optional<fs::path> nextTrack(const fs::path& path, const Flag& stop) {
  std::vector<AlbumTrack> tracks = albumTracks(path, TagReading::Read, stop);
  auto next = std::ranges::find_if(tracks, [&](const AlbumTrack& t) { return samePath(t.path, path); });
  if (next != tracks.end()) {
    ++next;
  } else {
    std::ranges::stable_sort(tracks, trackLess, &AlbumTrack::path);
    next = std::ranges::find_if(tracks, [&](const AlbumTrack& t) { return trackLess(path, t.path); });
  }
  if (next == tracks.end()) return {};
  return next->path;
}

}  // namespace

std::optional<fs::path> nextItemAfter(const fs::path& path, const Flag& stop) {
  learnRoomKind(path, stop);
  const std::optional<fs::path> root = seriesRootOf(path);
  if (!root) return nextTrack(path, stop);
  const auto number = parseSeasonEpisode(path.stem().string());
  if (!number || !isInside(path, *root)) return {};
  return nextEpisode(path, *root, *number, stop);
}

}  // namespace tavek

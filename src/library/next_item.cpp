#include "library/next_item.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <tuple>
#include <vector>

#include "base/text.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

struct EpisodeEntry {
  fs::path path;
  SeasonEpisode number;
  std::string nameKey;  ///< the lower-cased stem
};

bool isRegular(const fs::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_regular_file(ignored);
}

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

std::vector<EpisodeEntry> episodesUnder(const fs::path& folder) {
  std::vector<EpisodeEntry> episodes;
  std::error_code error;
  fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error);
  for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
    const std::string stem = entry->path().stem().string();
    if (!isRegular(*entry) || !isVideoFile(entry->path())) continue;
    if (const auto number = parseSeasonEpisode(stem))
      episodes.push_back({entry->path(), *number, toLower(stem)});
  }
  const auto order = [](const EpisodeEntry& e) {
    return std::tie(e.number.season, e.number.episode, e.nameKey);
  };
  std::stable_sort(episodes.begin(), episodes.end(),
                   [&](const EpisodeEntry& a, const EpisodeEntry& b) { return order(a) < order(b); });
  return episodes;
}

std::optional<fs::path> nextEpisode(const fs::path& path, const fs::path& root, SeasonEpisode number) {
  const std::vector<EpisodeEntry> episodes = episodesUnder(scanFolderOf(path, root));
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

std::optional<fs::path> nextTrack(const fs::path& path) {
  std::vector<fs::path> tracks;
  std::error_code error;
  fs::directory_iterator entry(path.parent_path(), fs::directory_options::skip_permission_denied, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    if (isRegular(*entry) && isAudioFile(entry->path())) tracks.push_back(entry->path());
  }
  std::stable_sort(tracks.begin(), tracks.end(), trackLess);
  auto current =
      std::find_if(tracks.begin(), tracks.end(), [&](const fs::path& t) { return samePath(t, path); });
  if (current == tracks.end() || ++current == tracks.end()) return {};
  return *current;
}

}  // namespace

std::optional<fs::path> nextItemAfter(const fs::path& path) {
  const std::optional<fs::path> root = seriesRootOf(path);
  if (!root) return nextTrack(path);
  const auto number = parseSeasonEpisode(path.stem().string());
  if (!number || !isInside(path, *root)) return {};
  return nextEpisode(path, *root, *number);
}

}  // namespace tavek

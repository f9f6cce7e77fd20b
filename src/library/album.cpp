#include "library/album.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/text.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/track_info.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr const char* coverStems[] = {"cover", "folder", "front", "album", "poster"};
constexpr const char* extensions[] = {".jpg", ".jpeg", ".png"};

int valueOf(std::string_view digits) {
  int value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return result.ec == std::errc::result_out_of_range ? INT_MAX : value;
}

AlbumTrack albumTrackOf(const fs::path& path, const std::optional<TrackInfo>& info) {
  const std::string stem = path.stem().string();
  AlbumTrack track{path, info ? info->title : "", info ? info->track : "", 0};
  if (track.title.empty()) track.title = stem;
  if (track.number.empty()) track.number = firstDigits(stem);
  track.numberValue = valueOf(track.number);
  return track;
}

std::optional<fs::path> firstUsable(const fs::path& folder, const char* stem) {
  for (const char* extension : extensions) {
    fs::path file = folder / stem;
    file += extension;
    if (isUsableFile(file)) return file;
  }
  return {};
}

}  // namespace

bool albumOrderLess(const AlbumTrack& a, const AlbumTrack& b) {
  const bool aNumbered = a.numberValue > 0;
  const bool bNumbered = b.numberValue > 0;
  if (aNumbered && bNumbered) return a.numberValue < b.numberValue;
  if (aNumbered || bNumbered) return aNumbered;
  return toLower(a.path.filename().string()) < toLower(b.path.filename().string());
}

std::vector<AlbumTrack> albumTracks(const fs::path& file, TagReading reading, const Flag& stop) {
  std::vector<AlbumTrack> tracks;
  walkIn(file.parent_path(), [&](const fs::directory_entry& entry) {
    if (isAudioFile(entry.path()) && isRegularFile(entry)) {
      tracks.push_back(albumTrackOf(entry.path(), reading == TagReading::Read
                                                      ? trackInfo(entry.path())
                                                      : knownTrackInfo(entry.path())));
    }
    return !stop;
  });
  // Tracks of one number, as those of several discs, stand by their names.
  std::ranges::sort(tracks, {},
                    [](const AlbumTrack& track) { return std::string_view(track.path.native()); });
  std::ranges::stable_sort(tracks, albumOrderLess);
  return tracks;
}

std::optional<fs::path> neighbourTrack(const fs::path& file, int step, const Flag& stop) {
  if (step == 0 || file.empty()) return {};
  const std::vector<AlbumTrack> tracks = albumTracks(file, TagReading::Read, stop);
  auto current = std::ranges::find(tracks, file, &AlbumTrack::path);
  if (current == tracks.end()) {
    std::error_code ignored;
    current = std::ranges::find_if(
        tracks, [&](const AlbumTrack& track) { return fs::equivalent(track.path, file, ignored); });
  }
  if (current == tracks.end() || stop) return {};
  const std::ptrdiff_t index = current - tracks.begin() + step;
  if (index < 0 || index >= std::ssize(tracks)) return {};
  return tracks[static_cast<std::size_t>(index)].path;
}

std::optional<fs::path> findAlbumCover(CoverCache& cache, const fs::path& track) {
  const fs::path folder = track.parent_path();
  if (folder.empty()) return {};
  const auto [place, isNew] = cache.try_emplace(folder.string());
  if (isNew) {
    for (const char* stem : coverStems) {
      if (auto cover = firstUsable(folder, stem)) {
        place->second = std::move(*cover);
        break;
      }
    }
  }
  if (place->second.empty()) return {};
  return place->second;
}

std::optional<fs::path> findAlbumLogo(const fs::path& file) {
  const fs::path folder = file.parent_path().parent_path();
  if (folder.empty()) return {};
  return firstUsable(folder, "logo");
}

}  // namespace tavek

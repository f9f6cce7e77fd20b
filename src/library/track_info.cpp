#include "library/track_info.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <exception>
#include <unordered_map>
#include <utility>

#include "base/file_state.h"
#include "base/guarded.h"
#include "base/process_flags.h"
#include "base/text.h"
#include "media/demultiplexer.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t keptFiles = 20'000;
constexpr const char* artistKeys[] = {"artist", "album_artist", "album artist", "composer"};

/// What was read of each file; those that came first go first.
class TagCache {
 public:
  struct Entry {
    FileState state;
    std::optional<TrackInfo> info;  ///< none if the file did not open
  };
  const Entry* find(const std::string& path) const {
    const auto known = entries_.find(path);
    return known != entries_.end() ? &known->second : nullptr;
  }
  void store(const std::string& path, Entry entry) {
    if (!entries_.insert_or_assign(path, std::move(entry)).second) return;
    order_.push_back(path);
    if (order_.size() <= keptFiles) return;
    entries_.erase(order_.front());
    order_.pop_front();
  }

 private:
  std::unordered_map<std::string, Entry> entries_;
  std::deque<std::string> order_;
};

Guarded<TagCache>& tagCache() {
  static Guarded<TagCache> cache;
  return cache;
}

std::optional<TrackInfo> readTrack(const fs::path& path) {
  try {
    const Demultiplexer file(path.string(), {}, Pictures::Optional, stopSignalled);
    TrackInfo info;
    info.title = file.tag("title");
    for (const char* key : artistKeys) {
      if (info.artist.empty()) info.artist = file.tag(key);
    }
    info.album = file.tag("album");
    info.genre = file.tag("genre");
    for (const char* key : {"track", "tracknumber"}) {
      if (info.track.empty()) info.track = firstDigits(file.tag(key));
    }
    for (const char* key : {"date", "year"}) {
      if (info.year.empty()) info.year = firstDigits(file.tag(key), 4);
    }
    info.duration = durationText(file.durationUs());
    return info;
  } catch (const std::exception&) {
    return {};
  }
}

std::string twoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::optional<TrackInfo> trackInfo(const fs::path& path) {
  if (path.empty()) return {};
  const fs::path file = path.lexically_normal();
  const std::string& key = file.native();
  FileState state = fileStateOf(file);
  {
    const auto cache = tagCache().hold();
    const TagCache::Entry* known = cache->find(key);
    if (known != nullptr && known->state == state) return known->info;
  }
  std::optional<TrackInfo> info = readTrack(file);
  tagCache().hold()->store(key, {std::move(state), info});
  return info;
}

std::optional<TrackInfo> knownTrackInfo(const fs::path& path) {
  const auto cache = tagCache().hold();
  const TagCache::Entry* known = cache->find(path.lexically_normal().string());
  return known != nullptr ? known->info : std::nullopt;
}

std::string_view firstDigits(std::string_view text, std::size_t longest) {
  const auto* from = std::ranges::find_if(text, isAsciiDigit);
  const auto* to = std::find_if_not(from, text.end(), isAsciiDigit);
  return std::string_view(from, to).substr(0, longest);
}

std::string durationText(std::int64_t us) {
  if (us < 1) return {};
  const std::int64_t seconds = us / 1'000'000;
  const std::string minutes = twoDigits(seconds / 60 % 60) + ':' + twoDigits(seconds % 60);
  return seconds < 3600 ? minutes : std::to_string(seconds / 3600) + ':' + minutes;
}

}  // namespace tavek

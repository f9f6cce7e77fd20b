#include "library/media_paths.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <system_error>
#include <unordered_map>

#include "base/paths.h"
#include "base/text.h"
#include "library/episode_name.h"
#include "library/folder_walk.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

struct NamedKind {
  std::string_view name;
  MediaKind kind;
};

constexpr std::array namedKinds{
    NamedKind{"video", MediaKind::Videos}, NamedKind{"videos", MediaKind::Videos},
    NamedKind{"tv", MediaKind::Series},    NamedKind{"series", MediaKind::Series},
    NamedKind{"music", MediaKind::Music},  NamedKind{"movies", MediaKind::Movies},
    NamedKind{"movie", MediaKind::Movies}, NamedKind{"kids", MediaKind::Movies},
};

struct RoomSpelling {
  std::string_view name;
  std::string_view normal;
};

constexpr std::array roomSpellings{
    RoomSpelling{"movie", "movies"},
    RoomSpelling{"tvshows", "tv"},
    RoomSpelling{"series", "tv"},
    RoomSpelling{"videos", "video"},
};

/// What walks have told by the folder's normal text.
class KindCache {
 public:
  std::optional<MediaKind> find(const std::string& folder) {
    const std::lock_guard lock(mutex_);
    const auto entry = kinds_.find(folder);
    return entry != kinds_.end() ? std::optional(entry->second) : std::nullopt;
  }
  void store(const std::string& folder, MediaKind kind) {
    const std::lock_guard lock(mutex_);
    kinds_[folder] = kind;
  }

 private:
  std::mutex mutex_;
  std::unordered_map<std::string, MediaKind> kinds_;
};

KindCache& kindCache() {
  static KindCache cache;
  return cache;
}

/// Lexically normal and without a slash at the end, which would hide the folder's name.
fs::path normalPath(const fs::path& path) {
  fs::path normal = path.lexically_normal();
  return normal.has_filename() || !normal.has_relative_path() ? normal : normal.parent_path();
}

/// The components by which a path inside the root lies below it.
std::vector<fs::path> partsBelow(const fs::path& path, const fs::path& root) {
  std::vector<fs::path> parts;
  for (const fs::path& part : normalPath(path).lexically_relative(normalPath(root))) {
    if (part != ".") parts.push_back(part);
  }
  return parts;
}

bool holdsEpisodes(const fs::path& folder, const Flag& stop) {
  bool found = false;
  walkBelow(folder, stop, [&](const fs::recursive_directory_iterator& entry) {
    found = beginsWithEpisodeTag(entry->path().stem().string()) && isRegularFile(*entry);
    return !found;
  });
  return found;
}

}  // namespace

std::optional<MediaKind> knownKind(const fs::path& path) {
  const fs::path folder = normalPath(path);
  if (folder.empty()) return MediaKind::Movies;
  const std::string name = toLower(folder.filename().string());
  const auto* const named = std::ranges::find(namedKinds, name, &NamedKind::name);
  return named != namedKinds.end() ? std::optional(named->kind) : kindCache().find(folder.string());
}

MediaKind classifyFolder(const fs::path& path, const Flag& stop) {
  if (const auto known = knownKind(path)) return *known;
  const fs::path folder = normalPath(path);
  // Not under the cache's lock: it may walk a whole disk.
  const MediaKind kind = holdsEpisodes(folder, stop) ? MediaKind::Series : MediaKind::Movies;
  if (!stop) kindCache().store(folder.string(), kind);
  return kind;
}

std::vector<fs::path> listRoots(const Flag& stop) {
  std::vector<fs::path> rooms;
  walkIn(mediaRoot(), [&](const fs::directory_entry& entry) {
    std::error_code ignored;
    const bool hidden = entry.path().filename().string().starts_with('.');
    if (!hidden && entry.is_directory(ignored)) rooms.push_back(entry.path());
    return !stop;
  });
  if (rooms.empty()) return {mediaRoot() / "movies", tvRoot(), videoRoot(), musicRoot()};
  std::ranges::sort(rooms, {}, [](const fs::path& room) { return room.filename().string(); });
  return rooms;
}

bool isInside(const fs::path& path, const fs::path& root) {
  const std::string inner = normalPath(path).string();
  const std::string outer = normalPath(root).string();
  if (outer.empty() || !inner.starts_with(outer)) return false;
  return inner.size() == outer.size() || inner[outer.size()] == '/' || inner[outer.size()] == '\\';
}

std::optional<std::string> inMovedFolder(std::string_view path, std::string_view old, std::string_view now) {
  if (path.size() <= old.size() || !path.starts_with(old) || path[old.size()] != '/') return {};
  return std::string(now).append(path.substr(old.size()));
}

std::optional<fs::path> roomRootOf(const fs::path& path) {
  if (!isInside(path, mediaRoot())) return {};
  const std::vector<fs::path> parts = partsBelow(path, mediaRoot());
  // isInside takes a backslash for a separator, the path type does not.
  if (parts.empty() || parts.front() == "..") return {};
  return mediaRoot() / parts.front();
}

std::optional<fs::path> seriesRootOf(const fs::path& path) {
  const auto room = roomRootOf(path);
  return room && knownKind(*room) == MediaKind::Series ? room : std::nullopt;
}

void learnRoomKind(const fs::path& path, const Flag& stop) {
  if (const auto room = roomRootOf(path)) classifyFolder(*room, stop);
}

int seriesDepth(const fs::path& path) {
  const auto room = seriesRootOf(path);
  return room ? static_cast<int>(partsBelow(path, *room).size()) : 0;
}

std::optional<fs::path> seriesFolderOf(const fs::path& path) {
  const auto room = seriesRootOf(path);
  if (!room) return {};
  const std::vector<fs::path> parts = partsBelow(path, *room);
  if (parts.size() < 2) return {};
  return *room / parts.front();
}

std::string normalizeRoomName(std::string_view text) {
  const std::string name = toLower(text);
  const auto spelling = std::ranges::find(roomSpellings, name, &RoomSpelling::name);
  return spelling != roomSpellings.end() ? std::string(spelling->normal) : name;
}

std::string roomNameOfRoot(const fs::path& path) {
  return roomLabelOf(path, "movies");
}

std::string roomNameOfMedia(std::string_view text) {
  if (text.empty()) return "movies";
  const auto room = roomRootOf(mediaRoot() / fs::path(text));  // an absolute path stays what it is
  return room ? roomNameOfRoot(*room) : "movies";
}

std::string roomLabelOf(const fs::path& path, std::string_view fallback) {
  return toLower(path.has_filename() ? path.filename().string() : fallback);
}

}  // namespace tavek

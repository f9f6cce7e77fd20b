#include "scan/film_folder.h"

#include <algorithm>
#include <sys/stat.h>
#include <system_error>

#include "library/file_types.h"
#include "library/folder_walk.h"
#include "scan/tidy_rules.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

fs::file_status statusOf(const fs::path& path) {
  std::error_code ignored;
  return fs::symlink_status(path, ignored);
}

/// 0 if that cannot be told.
std::int64_t changedNsOf(const fs::path& folder) {
  struct stat status {};
  if (::stat(folder.c_str(), &status) != 0) return 0;
  return std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec;
}

std::string stemOf(const std::string& name) {
  return fs::path(name).stem().string();
}

/// The other one is to be preferred: it is larger, or else comes first.
bool goesBefore(const fs::path& other, const fs::path& video) {
  std::error_code ignored;
  const auto size = fs::file_size(video, ignored);
  const auto otherSize = fs::file_size(other, ignored);
  return otherSize != size ? otherSize > size : other < video;
}

/// Nothing but extras lies below.
bool holdsOnlyExtras(const fs::path& folder) {
  const FolderContent content = contentOf(folder);
  return std::ranges::none_of(content.files, [](const std::string& file) { return isFilmName(file); }) &&
         std::ranges::all_of(content.folders, [&](const std::string& name) {
           return isExtrasFolder(name) || (!isDiscFolder(name) && holdsOnlyExtras(folder / name));
         });
}

}  // namespace

FolderContent contentOf(const fs::path& folder) {
  FolderContent content;
  walkIn(folder, [&](const fs::directory_entry& entry) {
    std::error_code ignored;
    std::string name = entry.path().filename().string();
    const fs::file_status status = entry.symlink_status(ignored);
    if (name.starts_with('.')) return true;
    if (fs::is_regular_file(status))
      content.files.insert(std::move(name));
    else if (fs::is_directory(status))
      content.folders.push_back(std::move(name));
    return true;
  });
  return content;
}

const FolderContent& FolderReader::read(const fs::path& folder) {
  const std::int64_t changed = changedNsOf(folder);
  if (folder != folder_ || changed != changedNs_ || changed == 0) content_ = contentOf(folder);
  folder_ = folder;
  changedNs_ = changed;
  return content_;
}

void FolderReader::noteRename(const fs::path& old, const fs::path& now) {
  if (old.parent_path() == folder_) content_.files.erase(old.filename().string());
  if (now.parent_path() == folder_) content_.files.insert(now.filename().string());
  changedNs_ = changedNsOf(folder_);
}

bool isFilmName(const fs::path& name) {
  return isVideoFile(name) && !isAudioFile(name) && !isSoundTrack(name) && !isBonus(name.stem().string());
}

bool isTaken(const fs::path& path) {
  // What cannot be looked at is there, for all that is known.
  return statusOf(path).type() != fs::file_type::not_found;
}

bool isReallyInside(const fs::path& room, const fs::path& path) {
  fs::path at = room;
  for (const fs::path& name : path.lexically_relative(room).parent_path()) {
    at /= name;
    if (!fs::is_directory(statusOf(at))) return false;
  }
  const fs::file_status last = statusOf(path);
  return fs::is_regular_file(last) || fs::is_directory(last);
}

std::vector<std::string> companionEndings(const FolderContent& content, const fs::path& video) {
  const std::string stem = video.stem().string();
  // All names that begin alike stand together.
  const auto first = content.files.lower_bound(stem);
  const auto last = std::find_if(first, content.files.end(),
                                 [&](const std::string& file) { return !file.starts_with(stem); });
  std::vector<std::string> longerStems;
  for (auto file = first; file != last; ++file) {
    if (!isVideoFile(*file)) continue;
    if (std::string other = stemOf(*file); other.size() > stem.size())
      longerStems.push_back(std::move(other));
  }
  std::vector<std::string> endings;
  for (auto file = first; file != last; ++file) {
    const std::string_view ending = companionEnding(*file, stem);
    const auto isOf = [&](const std::string& other) { return !companionEnding(*file, other).empty(); };
    if (!ending.empty() && std::ranges::none_of(longerStems, isOf)) endings.emplace_back(ending);
  }
  return endings;
}

bool isChosen(const FolderContent& content, const fs::path& video, bool onlyNamesakes) {
  const std::string own = video.filename().string();
  const std::string stem = video.stem().string();
  return std::ranges::none_of(content.files, [&](const std::string& file) {
    const std::string_view other = std::string_view(file).substr(0, file.rfind('.'));
    const bool part = areParts(stem, other);
    if (file == own || !(part || !onlyNamesakes || other == stem) || !isFilmName(file)) return false;
    return part || goesBefore(video.parent_path() / file, video);
  });
}

bool isOwnFolder(const fs::path& folder, const fs::path& video, const std::string& wantedStem) {
  const std::string own = video.filename().string();
  const FolderContent content = contentOf(folder);
  const bool oneFilm = std::ranges::all_of(content.files, [&](const std::string& file) {
    if (file == own || !isFilmName(file)) return true;
    const std::string other = stemOf(file);
    return haveOneTitle(other, video.stem().string()) || haveOneTitle(other, wantedStem);
  });
  return oneFilm && std::ranges::all_of(content.folders, [&](const std::string& name) {
           return isExtrasFolder(name) || (!isDiscFolder(name) && holdsOnlyExtras(folder / name));
         });
}

bool anyBelow(const fs::path& folder, const std::function<bool(const fs::path&)>& test) {
  bool found = false;
  const Flag never;
  walkBelow(folder, never, [&](const fs::recursive_directory_iterator& entry) {
    found = test(entry->path());
    return !found;
  });
  return found;
}

}  // namespace tavek

#include "library/media_list.h"

#include <algorithm>

#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"

namespace tavek {

namespace fs = std::filesystem;

std::vector<std::string> listMedia(const fs::path& room, const Flag& stop) {
  const auto plays = classifyFolder(room, stop) == MediaKind::Music ? isAudioFile : isFilm;
  std::vector<std::string> files;
  walkBelow(room, stop, [&](const fs::recursive_directory_iterator& entry) {
    if (plays(entry->path()) && isRegularFile(*entry)) files.push_back(entry->path().string());
    return true;
  });
  std::ranges::sort(files);
  return files;
}

bool holdsMedia(const fs::path& folder, const Flag& stop) {
  bool found = false;
  walkBelow(folder, stop, [&](const fs::recursive_directory_iterator& entry) {
    found = (isFilm(entry->path()) || isAudioFile(entry->path())) && isRegularFile(*entry);
    return !found;
  });
  return found;
}

}  // namespace tavek

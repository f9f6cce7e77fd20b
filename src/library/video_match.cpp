#include "library/video_match.h"

#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "library/titles.h"

namespace tavek {

namespace fs = std::filesystem;

std::optional<fs::path> findVideoForPoster(const fs::path& poster, const fs::path& limit, const Flag& stop) {
  const std::string key = posterKeyOf(poster);
  const fs::path folder = poster.parent_path();
  if (key.empty() || (!limit.empty() && !isInside(folder, limit))) return {};
  std::optional<fs::path> video;
  walkBelow(folder, [&](const fs::recursive_directory_iterator& entry) {
    const fs::path& file = entry->path();
    if (isVideoFile(file) && normalizeTitle(file.stem().string()) == key && isRegularFile(*entry))
      video = file;
    return !video && !stop;
  });
  return video;
}

}  // namespace tavek

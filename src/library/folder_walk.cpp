#include "library/folder_walk.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <memory>
#include <vector>

namespace tavek {
namespace {

struct DirDeleter {
  void operator()(DIR* directory) const { closedir(directory); }
};

/// A folder that the walk is in.
struct Level {
  std::unique_ptr<DIR, DirDeleter> directory;
  std::size_t pathLength;
};

bool isDots(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

/// Some file systems do not tell what an entry is.
unsigned char typeOf(const dirent& entry, const std::string& path) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type;
  std::error_code ignored;
  const auto status = std::filesystem::symlink_status(path, ignored);
  if (std::filesystem::is_symlink(status)) return DT_LNK;
  if (std::filesystem::is_directory(status)) return DT_DIR;
  return std::filesystem::is_regular_file(status) ? DT_REG : DT_UNKNOWN;
}

bool leadsToFolder(const std::string& link) {
  std::error_code ignored;
  return std::filesystem::is_directory(link, ignored);
}

}  // namespace

bool WalkedEntry::isRegularFile() const {
  if (!isLink) return isFile;
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

void walkTexts(const std::filesystem::path& folder, const Flag& stop,
               const std::function<bool(const WalkedEntry&)>& visit) {
  std::string path = folder.string();
  while (path.ends_with('/')) path.pop_back();
  std::vector<Level> levels;
  // False for an error other than a closed door.
  const auto enter = [&] {
    DIR* directory = opendir(path.c_str());
    if (directory != nullptr) levels.push_back({std::unique_ptr<DIR, DirDeleter>(directory), path.size()});
    return directory != nullptr || errno == EACCES;
  };
  enter();
  while (!levels.empty() && !stop) {
    path.resize(levels.back().pathLength);
    const dirent* entry = readdir(levels.back().directory.get());
    if (entry == nullptr) {
      levels.pop_back();
      continue;
    }
    if (isDots(entry->d_name)) continue;
    path.append("/").append(entry->d_name);
    const unsigned char type = typeOf(*entry, path);
    const bool link = type == DT_LNK;
    const bool isFolder = type == DT_DIR || (link && leadsToFolder(path));
    if (!visit({path, levels.size() - 1, isFolder, link, type == DT_REG})) return;
    if (type == DT_DIR && !enter()) return;
  }
}

}  // namespace tavek

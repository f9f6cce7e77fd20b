#include "library/backdrop.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

#include "base/paths.h"
#include "base/text.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 3> names = {"backdrop", "background", "fanart"};
constexpr std::array<std::string_view, 3> extensions = {".jpg", ".jpeg", ".png"};

bool isOneOf(std::span<const std::string_view> texts, std::string_view text) {
  return std::ranges::find(texts, text) != texts.end();
}

std::optional<fs::path> exactName(const fs::path& folder) {
  for (const std::string_view name : names) {
    for (const std::string_view extension : extensions) {
      fs::path file = folder / name;
      file += extension;
      if (isUsableFile(file)) return file;
    }
  }
  return {};
}

std::optional<fs::path> nameInAnyCase(const fs::path& folder) {
  std::optional<fs::path> found;
  walkIn(folder, [&](const fs::directory_entry& entry) {
    const fs::path& file = entry.path();
    const bool picture = isOneOf(extensions, lowerExtension(file));
    if (picture && isOneOf(names, toLower(file.stem().string())) && isUsableFile(file)) found = file;
    return !found;
  });
  return found;
}

}  // namespace

std::optional<fs::path> findBackdrop(const fs::path& track) {
  for (fs::path folder = track.parent_path(); isInside(folder, musicRoot()); folder = folder.parent_path()) {
    if (auto file = exactName(folder)) return file;
    if (auto file = nameInAnyCase(folder)) return file;
    if (folder == folder.parent_path()) break;
  }
  return {};
}

}  // namespace tavek

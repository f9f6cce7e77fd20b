#include "scan/art_files.h"

#include <system_error>

#include "library/file_types.h"
#include "scan/http.h"

namespace tavek {

bool isMissing(const std::filesystem::path& file) {
  if (isUsableFile(file)) return false;
  std::error_code ignored;
  std::filesystem::remove(file.parent_path() / ("." + file.filename().string() + ".part"), ignored);
  removeIfPresent(file);
  return true;
}

std::string pathInRoom(const std::filesystem::path& file, const std::filesystem::path& room) {
  const std::filesystem::path relative = file.lexically_relative(room);
  return (relative.empty() || *relative.begin() == ".." ? file.filename() : relative).string();
}

const char* okOrMissing(bool missing) {
  return missing ? "missing" : "ok";
}

}  // namespace tavek

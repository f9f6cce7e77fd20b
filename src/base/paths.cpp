#include "base/paths.h"

#include <cstdlib>
#include <system_error>

namespace tavek {
namespace {

namespace fs = std::filesystem;

fs::path placeOf(const char* variable, const fs::path& fixed) {
  const char* moved = std::getenv(variable);
  return moved != nullptr && *moved != '\0' ? fs::path(moved) : fixed;
}

fs::path systemFontFolder() {
  const fs::path fixed = "/usr/share/fonts/ttf";
  std::error_code ignored;
  return fs::is_directory(fixed, ignored) ? fixed : fs::path("/usr/share/fonts/truetype/lato");
}

}  // namespace

const fs::path& mediaRoot() {
  static const fs::path root = placeOf("TAVEK_MEDIA_ROOT", "/media").lexically_normal();
  return root;
}

const fs::path& tvRoot() {
  static const fs::path root = mediaRoot() / "tv";
  return root;
}

const fs::path& videoRoot() {
  static const fs::path root = mediaRoot() / "video";
  return root;
}

const fs::path& musicRoot() {
  static const fs::path root = mediaRoot() / "music";
  return root;
}

const fs::path& stateFile() {
  static const fs::path file = mediaRoot() / "persist.json";
  return file;
}

const fs::path& fontFolder() {
  static const fs::path folder = placeOf("TAVEK_FONT_DIR", systemFontFolder());
  return folder;
}

const fs::path& alsaProcFolder() {
  static const fs::path folder = placeOf("TAVEK_PROC_ASOUND", "/proc/asound");
  return folder;
}

}  // namespace tavek

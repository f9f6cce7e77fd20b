#include "base/paths.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <system_error>
#include <unistd.h>

namespace tavek {
namespace {

namespace fs = std::filesystem;

fs::path placeOf(const char* variable, const fs::path& fixed) {
  const char* moved = std::getenv(variable);
  return moved != nullptr && *moved != '\0' ? fs::path(moved) : fixed;
}

std::string baseOf(const char* variable, const char* fixed) {
  std::string base = placeOf(variable, fixed).string();
  while (base.ends_with('/')) base.pop_back();
  return base;
}

fs::path systemHomeFolder() {
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found != nullptr && found->pw_dir != nullptr ? found->pw_dir : "";
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

const fs::path& homeFolder() {
  static const fs::path folder = placeOf("TAVEK_HOME", systemHomeFolder());
  return folder;
}

const fs::path& etcFolder() {
  static const fs::path folder = placeOf("TAVEK_ETC", "/etc");
  return folder;
}

const std::string& tmdbApiBase() {
  static const std::string base = baseOf("TAVEK_TMDB_API", "https://api.themoviedb.org/3");
  return base;
}

const std::string& tmdbImageBase() {
  static const std::string base = baseOf("TAVEK_TMDB_IMAGES", "https://image.tmdb.org/t/p");
  return base;
}

const std::string& fanartApiBase() {
  static const std::string base = baseOf("TAVEK_FANART_API", "https://webservice.fanart.tv/v3");
  return base;
}

const std::string& tvdbApiBase() {
  static const std::string base = baseOf("TAVEK_TVDB_API", "https://api4.thetvdb.com/v4");
  return base;
}

}  // namespace tavek

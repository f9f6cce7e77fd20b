#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The keys of the services, which the user puts into two small files. They must stand in no log, no argument
/// and no other file.
namespace tavek {

/// Empty where unknown.
struct Credentials {
  std::string tmdbKey, tmdbToken;
  std::string fanartKey, fanartClientKey;
  std::string tvdbKey, tvdbPin;
  bool hasTmdb() const { return !tmdbKey.empty() || !tmdbToken.empty(); }
  bool hasFanart() const { return !fanartKey.empty(); }
};

inline constexpr std::string_view tmdbConfigName = ".tmdb.json";
inline constexpr std::string_view fanartConfigName = ".fanart.json";

/// Where the files are looked for, in this order; an empty path is skipped.
struct ConfigFolders {
  std::filesystem::path current, home, program, system;
};
ConfigFolders configFolders();

/// The first that stands anywhere; only if there is none, an empty one that is made in the home folder.
std::optional<std::filesystem::path> findConfigFile(std::string_view name, const ConfigFolders& folders);
/// An empty object, for its owner alone, where nothing stands. Errors pass in silence.
void ensureConfigStub(const std::filesystem::path& path);
/// The beginning of a file, up to 64 KiB and without its line ends; none if it is no file or is closed to us.
std::optional<std::string> readConfigText(const std::filesystem::path& path);
/// The next quoted text behind the key and a colon, as it stands; none if it is empty or holds a control
/// character.
std::optional<std::string> readConfigString(std::string_view text, std::string_view key);

void readTmdbConfig(std::string_view text, Credentials& credentials);
void readFanartConfig(std::string_view text, Credentials& credentials);

/// Reads both files, the second only where the first leaves the fan-art key open; logs their paths. Touches
/// the disk, once and shortly.
Credentials loadCredentials(const ConfigFolders& folders = configFolders());

}  // namespace tavek

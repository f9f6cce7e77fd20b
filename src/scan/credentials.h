#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tavek {

/// The user's keys for the web services; empty where none is known. They stand in no line of a log.
struct Credentials {
  std::string tmdbKey, tmdbToken;
  std::string fanartKey, fanartClientKey;
  std::string tvdbKey, tvdbPin;
};

/// The first of the places where a file of keys may lie: the working directory, the home folder, the
/// program's own and the system's. Without any, an empty one that nobody else can read is made in the home
/// folder, for the user to fill.
std::optional<std::filesystem::path> findConfigFile(std::string_view name);
/// The text behind the key, up to the next quote; none if it is empty or no such can be a key.
std::optional<std::string> readConfigString(std::string_view text, std::string_view key);
/// Of `.tmdb.json` and `.fanart.json`. Reads the disk.
Credentials readCredentials();

}  // namespace tavek

#pragma once

#include <filesystem>
#include <string>

namespace tavek {

/// The file has to be fetched: there is none, or an empty one, which goes, as does what a download left that
/// was cut off.
bool isMissing(const std::filesystem::path& file);
/// How the status line names a file: by its path in its room, else by its name.
std::string pathInRoom(const std::filesystem::path& file, const std::filesystem::path& room);
/// "ok" or "missing".
const char* okOrMissing(bool missing);

}  // namespace tavek

#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/process_flags.h"

namespace tavek {

/// The media files of a room, below it at any depth, in the byte order of their paths: tracks in a room of
/// music, else videos. Walks the disk until `stop` is set.
std::vector<std::string> listMedia(const std::filesystem::path& room, const Flag& stop);

/// Whether there is a video or a track below the folder at any depth.
bool holdsMedia(const std::filesystem::path& folder, const Flag& stop);

}  // namespace tavek

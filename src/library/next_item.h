#pragma once

#include <filesystem>
#include <optional>

namespace tavek {

/// What plays after `path` has ended by itself: the next episode of its series folder, or the next track of
/// its folder; no value after the last. Reads the disk, skips what it may not enter.
std::optional<std::filesystem::path> nextItemAfter(const std::filesystem::path& path);

}  // namespace tavek

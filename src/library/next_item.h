#pragma once

#include <filesystem>
#include <optional>

#include "base/process_flags.h"

namespace tavek {

/// What plays after `path` has ended by itself: the next episode of its series folder, or the next track of
/// its album; no value after the last. Walks the disk until `stop` is set, skips what it may not enter.
std::optional<std::filesystem::path> nextItemAfter(const std::filesystem::path& path, const Flag& stop);

}  // namespace tavek

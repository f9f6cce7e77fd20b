#pragma once

#include <filesystem>
#include <optional>

namespace tavek {

/// The picture behind a track: backdrop, background or fanart in its folder, else in the nearest folder above
/// it, up to the music room. None for a track elsewhere. Reads the disk.
std::optional<std::filesystem::path> findBackdrop(const std::filesystem::path& track);

}  // namespace tavek

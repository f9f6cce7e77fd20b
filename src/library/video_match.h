#pragma once

#include <filesystem>
#include <optional>

namespace tavek {

/// The video that an image stands for: the first one below the image's folder, in the order of the
/// directories, whose normalised stem is the image's posterKeyOf. With a limit, the image's folder has to lie
/// inside it. Walks the disk.
std::optional<std::filesystem::path> findVideoForPoster(const std::filesystem::path& poster,
                                                        const std::filesystem::path& limit);

}  // namespace tavek

#pragma once

#include <filesystem>
#include <optional>

#include "base/process_flags.h"

namespace tavek {

/// The video that an image stands for: the first one below the image's folder, in the order of the
/// directories, whose normalised stem is the image's posterKeyOf. With a limit, the image's folder has to lie
/// inside it. Walks the disk until `stop` is set.
std::optional<std::filesystem::path> findVideoForPoster(const std::filesystem::path& poster,
                                                        const std::filesystem::path& limit, const Flag& stop);

}  // namespace tavek

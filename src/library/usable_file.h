#pragma once

#include <filesystem>

namespace tavek {

/// A regular file that is not empty. False for everything else, also for what can't be looked at.
bool isUsableFile(const std::filesystem::path& file);

}  // namespace tavek

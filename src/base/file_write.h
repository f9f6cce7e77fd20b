#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/types.h>

namespace tavek {

/// Makes `file` hold these bytes so that neither a crash nor a full disk nor a lost power supply leaves less
/// than the old or the new ones: they go to a file beside it, are synced, and take its place by a rename.
/// Where no file can be made beside it, it is written in place. Creates missing parent folders. False if the
/// bytes did not get there; the old ones then still stand. Without a mode the file keeps the one that it has.
bool replaceFile(const std::filesystem::path& file, std::string_view bytes, std::optional<mode_t> mode = {});

/// Moves a file or folder to a name that is free. False, with everything as it was, if it is not, or at any
/// other failure.
bool renameNoReplace(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace tavek

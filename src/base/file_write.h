#pragma once

#include <filesystem>
#include <string_view>

namespace tavek {

/// Makes `file` hold these bytes so that neither a crash nor a full disk nor a lost power supply leaves less
/// than the old or the new ones: they go to a file beside it, are synced, and take its place by a rename.
/// Where no file can be made beside it, it is written in place. Creates missing parent folders. False if the
/// bytes did not get there; the old ones then still stand.
bool replaceFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace tavek

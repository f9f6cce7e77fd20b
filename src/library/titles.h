#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// The form of names in which a poster and what it plays are compared.
namespace tavek {

/// ASCII letters in lower case, digits and blanks; every other byte is dropped.
std::string normalizeTitle(std::string_view text);
/// "poster", "folder", "cover" and "front" stand for the folder that holds the image.
bool isGenericPosterName(std::string_view lowerStem);
/// The name under which an image is matched to a video: that of its folder for a poster.jpg or the like, its
/// own otherwise.
std::string posterKeyOf(const std::filesystem::path& path);
std::string posterKeyOf(std::string_view folderName, std::string_view stem);

}  // namespace tavek

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// The forms of names in which a poster, what it plays and what the viewer asks for are compared. Names are
/// UTF-8; one that is not is taken byte by byte. Every function may be called from every thread.
namespace tavek {

/// Takes the first character off a text; none, and nothing is taken, if it is no UTF-8.
std::optional<char32_t> takeCharacter(std::string_view& text);
/// Case-folded and normalised (NFC), so that names which read the same are the same bytes.
std::string foldCase(std::string_view text);
/// Whether a title would lose letters if only those of ASCII were kept: it has to be compared whole.
bool losesLetters(std::string_view text);
/// ASCII letters in lower case, digits and blanks; every other byte is dropped. The folded title as a whole
/// if that would lose letters.
std::string normalizeTitle(std::string_view text);
/// The letters and digits by which a title is typed: in lower case and without accents, those of other
/// scripts left out. Empty for a title that begins in another script.
std::string baseLetters(std::string_view text);
/// The cell of the letter bar that a title belongs to, '0' to '9' or 'A' to 'Z': its first letter or digit,
/// without accents. 0 for one of another script and for a title without any.
char letterOf(std::string_view title);

/// "poster", "folder", "cover" and "front" stand for the folder that holds the image.
bool isGenericPosterName(std::string_view lowerStem);
/// The same for an image's stem as it stands, with or without its ".poster".
bool standsForFolder(std::string_view stem);
/// The name under which an image is matched to a video: that of its folder for a poster.jpg or the like, its
/// own otherwise.
std::string posterKeyOf(const std::filesystem::path& path);
std::string posterKeyOf(std::string_view folderName, std::string_view stem);

}  // namespace tavek

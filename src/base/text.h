#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Byte-wise text rules: only ASCII letters have a case here, so no name is changed by the locale.
namespace tavek {

std::string toLower(std::string_view text);
/// Without white space at both ends.
std::string trim(std::string_view text);
/// The extension with its dot, in lower case; empty without one.
std::string lowerExtension(const std::filesystem::path& path);
bool isAsciiDigit(char c);
bool isAsciiSpace(char c);
/// The order of names in lists: runs of digits count as numbers of any length, so "episode 2" comes before
/// "episode 10"; all other bytes count as unsigned ones. Names that differ only in leading zeros are ordered
/// as plain text.
bool lessNatural(std::string_view a, std::string_view b);

}  // namespace tavek

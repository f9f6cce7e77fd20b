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

}  // namespace tavek

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the name of a film tells, and the name that a film gets. Plain rules: any bytes may be passed, each
/// takes a time in proportion to their number, and every thread may call.
namespace tavek {

struct ParsedName {
  std::string title;
  std::optional<std::int32_t> year;
  bool operator==(const ParsedName&) const = default;
};

/// The first number that looks like a year, 1900 to 2099, and what stands before it; the whole text where
/// nothing does.
ParsedName parseTitleAndYear(std::string_view name);
/// The readings under which a film is looked for, one after the other until a match is plausible: that of
/// parseTitleAndYear first, which mistakes numbers in titles for years, then likelier ones for such names.
std::vector<ParsedName> searchNames(std::string_view stem);

/// The longest name that a file or folder gets, in bytes and without its extension.
inline constexpr std::size_t longestMediaName = 180;
/// A title as part of a file's name: without what a path or another system takes for its own, never
/// beginning with a dot, without control characters, of at most this many bytes; "video" for nothing.
std::string fileTitle(std::string_view title, std::size_t maxBytes = longestMediaName);
/// "Alien (1979)": the name of a film's folder and, with the extension, of its file.
std::string buildMediaName(std::string_view title, std::optional<std::int32_t> year);

/// Whether a service's film is the wanted one for sure enough to rename a file after it: one title, leading
/// article aside, and years at most one apart as far as both are known.
bool plausibleMatch(const ParsedName& wanted, std::string_view title, std::optional<std::int32_t> year);

}  // namespace tavek

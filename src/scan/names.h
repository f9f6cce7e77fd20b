#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the names of films tell, and what a film may be called. Any bytes; plain rules on texts.
namespace tavek {

struct ParsedName {
  std::string title;
  std::optional<std::int32_t> year;
  bool operator==(const ParsedName&) const = default;
};

/// The title before the first number from 1900 to 2099, and that as the year; all of the name without one, or
/// with nothing before it.
ParsedName parseTitleAndYear(std::string_view name);
/// What else a name can mean, the likeliest first: "1917.2019" is the film 1917 of 2019, and "2012" has a
/// number for a title.
std::vector<ParsedName> searchNames(std::string_view stem);

/// A text that may be part of a file's name: without characters that some file system refuses, without
/// control characters, never hidden, cut at a whole character after so many bytes; "video" if nothing is
/// left.
std::string fitForFileName(std::string_view text, std::size_t mostBytes);
/// "Alien (1979)"; 180 bytes at most.
std::string buildMediaName(std::string_view title, std::optional<std::int32_t> year);

/// Surely the same film: one title, but for a leading article, accents and what stands between its letters,
/// and years at most one apart.
bool plausibleMatch(const ParsedName& wanted, std::string_view title, std::optional<std::int32_t> year);

}  // namespace tavek

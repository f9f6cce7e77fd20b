#include "scan/names.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "base/text.h"
#include "library/match_key.h"
#include "library/titles.h"
#include "scan/episode_names.h"

namespace tavek {
namespace {

constexpr std::size_t longestName = 180;
constexpr std::size_t yearLength = 4;

/// With blanks for dots and underscores, one at a time.
std::string spaced(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const bool blank = c == '_' || c == '.' || isAsciiSpace(c);
    if (!blank) result += c;
    if (blank && !result.empty() && result.back() != ' ') result += ' ';
  }
  return trim(result);
}

bool isYearAt(std::string_view text, std::size_t at) {
  const std::string_view head = text.substr(at, 2);
  return (head == "19" || head == "20") && at + yearLength <= text.size() && isAsciiDigit(text[at + 2]) &&
         isAsciiDigit(text[at + 3]);
}

std::int32_t yearAt(const std::string& text, std::size_t at) {
  return std::atoi(text.substr(at, yearLength).c_str());
}

/// What is left of what stands before a year or a tag.
std::string titleBefore(std::string_view text) {
  const std::size_t last = text.find_last_not_of("_-.[( \t\n\v\f\r");
  return trim(text.substr(0, last == std::string_view::npos ? 0 : last + 1));
}

void addReading(std::vector<ParsedName>& readings, ParsedName reading) {
  if (!reading.title.empty() && std::ranges::find(readings, reading) == readings.end())
    readings.push_back(std::move(reading));
}

std::string withAnds(std::string_view title) {
  std::string result;
  for (const char c : title) {
    if (c == '&') result += "and";
    if (c != '&') result += c;
  }
  return result;
}

/// By which two titles are compared.
std::string plainTitle(std::string_view title) {
  std::string folded = foldCase(trim(title));
  for (const std::string_view article : {"the ", "a ", "an "}) {
    if (folded.starts_with(article) && folded.size() > article.size()) {
      folded.erase(0, article.size());
      break;
    }
  }
  const std::string letters = baseLetters(withAnds(folded));
  if (!letters.empty()) return letters;
  // Those of other scripts, but for their blanks and stops.
  std::erase_if(folded, [](char c) {
    return isAsciiSpace(c) || std::string_view(".,:;!?-_'\"/").find(c) != std::string_view::npos;
  });
  return folded;
}

}  // namespace

ParsedName parseTitleAndYear(std::string_view name) {
  const std::string text = spaced(name);
  for (std::size_t at = 0; at + yearLength <= text.size(); ++at) {
    if (!isYearAt(text, at)) continue;
    std::string title = titleBefore(std::string_view(text).substr(0, at));
    return {title.empty() ? text : std::move(title), yearAt(text, at)};
  }
  return {text, {}};
}

std::vector<ParsedName> searchNames(std::string_view stem) {
  std::vector<ParsedName> readings;
  addReading(readings, parseTitleAndYear(stem));
  const std::string text = spaced(stem);
  for (std::size_t at = text.size(); at-- > 1;) {
    if (!isYearAt(text, at)) continue;
    addReading(readings, {titleBefore(std::string_view(text).substr(0, at)), yearAt(text, at)});
    break;
  }
  addReading(readings, {stripReleaseTags(text), {}});
  return readings;
}

std::string fitForFileName(std::string_view text, std::size_t mostBytes) {
  constexpr std::string_view refused = "\"*/<>?[]|";
  std::string name;
  for (const char c : text) {
    const bool blank = refused.find(c) != std::string_view::npos || isAsciiSpace(c);
    const bool dropped = c == '\\' || (static_cast<unsigned char>(c) < 0x20 && !blank) || c == 0x7f;
    if (blank && !name.empty() && name.back() != ' ') name += ' ';
    if (!blank && !dropped && !(c == '.' && name.empty())) name += c;
  }
  if (name.size() > mostBytes) {
    std::size_t end = mostBytes;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80) --end;
    name.resize(end);
  }
  name = trim(name);
  return name.empty() ? "video" : name;
}

std::string buildMediaName(std::string_view title, std::optional<std::int32_t> year) {
  const std::string suffix = year ? " (" + std::to_string(*year) + ")" : "";
  return fitForFileName(title, longestName - suffix.size()) + suffix;
}

bool plausibleMatch(const ParsedName& wanted, std::string_view title, std::optional<std::int32_t> year) {
  const std::string plain = plainTitle(title);
  if (plain.empty() || plain != plainTitle(wanted.title)) return false;
  return !wanted.year || (year && std::abs(*year - *wanted.year) <= 1);
}

}  // namespace tavek

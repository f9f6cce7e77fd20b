#include "scan/names.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "base/text.h"
#include "library/titles.h"
#include "scan/episode_stem.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t yearLength = 4;
constexpr std::size_t npos = std::string_view::npos;
constexpr std::array articles{"the "sv, "an "sv, "a "sv};

/// 19 or 20 and two digits at this place.
bool isYearAt(std::string_view text, std::size_t at) {
  const std::string_view digits = text.substr(at, yearLength);
  return digits.size() == yearLength && (digits.starts_with("19") || digits.starts_with("20")) &&
         isAsciiDigit(digits[2]) && isAsciiDigit(digits[3]);
}

std::int32_t yearAt(std::string_view text, std::size_t at) {
  std::int32_t year = 0;
  for (const char digit : text.substr(at, yearLength)) year = year * 10 + (digit - '0');
  return year;
}

/// Nothing but these four digits, where `isYearAt`.
bool standsAlone(std::string_view text, std::size_t at) {
  const std::size_t end = at + yearLength;
  return (at == 0 || !isAsciiDigit(text[at - 1])) && (end == text.size() || !isAsciiDigit(text[end]));
}

std::size_t firstYear(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (isYearAt(text, at)) return at;
  }
  return npos;
}

std::size_t lastLoneYear(std::string_view text) {
  for (std::size_t at = text.size(); at-- > 0;) {
    if (isYearAt(text, at) && standsAlone(text, at)) return at;
  }
  return npos;
}

/// White space as single blanks, none at the ends.
std::string collapsed(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (!isAsciiSpace(c)) {
      result += c;
    } else if (!result.empty() && result.back() != ' ') {
      result += ' ';
    }
  }
  return trim(result);
}

std::string spaced(std::string_view name) {
  std::string text(name);
  std::ranges::replace_if(
      text, [](char c) { return c == '_' || c == '.'; }, ' ');
  return collapsed(text);
}

/// What stands before a year, without the bracket that the year stands in.
std::string titleBefore(std::string_view text, std::size_t year) {
  std::string_view title = text.substr(0, year);
  while (!title.empty() && ("_-.[("sv.find(title.back()) != npos || isAsciiSpace(title.back()))) {
    title.remove_suffix(1);
  }
  return trim(title);
}

/// Controls, of one byte or, as UTF-8, of two.
std::size_t controlLength(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (byte(at) < 0x20 || byte(at) == 0x7F) return 1;
  return byte(at) == 0xC2 && at + 1 < text.size() && byte(at + 1) >= 0x80 && byte(at + 1) < 0xA0 ? 2 : 0;
}

/// Cut at the end of a whole character.
std::string_view shortened(std::string_view text, std::size_t maxBytes) {
  if (text.size() <= maxBytes) return text;
  std::size_t end = maxBytes;
  const auto continues = [&](std::size_t at) {
    return (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
  };
  // Bytes that are no UTF-8 may all look like that.
  constexpr std::size_t mostContinued = 3;
  while (end > 0 && end + mostContinued > maxBytes && continues(end)) --end;
  return text.substr(0, end);
}

/// The form in which two titles are one: what no file's name keeps for sure does not count.
std::string plainTitle(std::string_view title) {
  const std::string normal = normalizeTitle(title);
  std::string_view rest = normal;
  for (const std::string_view article : articles) {
    if (rest.size() <= article.size() || !rest.starts_with(article)) continue;
    rest.remove_prefix(article.size());
    break;
  }
  std::string plain;
  for (const char c : rest) {
    const bool letter = (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0x80;
    if (letter || isAsciiDigit(c)) plain += c;
  }
  return plain;
}

}  // namespace

ParsedName parseTitleAndYear(std::string_view name) {
  std::string text = spaced(name);
  const std::size_t at = firstYear(text);
  if (at == npos) return {std::move(text), {}};
  const std::int32_t year = yearAt(text, at);
  std::string title = titleBefore(text, at);
  return {title.empty() ? std::move(text) : std::move(title), year};
}

std::vector<ParsedName> searchNames(std::string_view stem) {
  std::vector<ParsedName> names;
  const auto add = [&](ParsedName name) {
    if (!name.title.empty() && std::ranges::find(names, name) == names.end())
      names.push_back(std::move(name));
  };
  const std::string text = spaced(stem);
  add(parseTitleAndYear(stem));
  const std::size_t first = firstYear(text);
  const std::size_t last = lastLoneYear(text);
  if (last != npos) add({titleBefore(text, last), yearAt(text, last)});
  // A number that begins the name may be the title, or its first word, with no year behind it.
  const bool onlyAtStart = (last == npos || last == first) && titleBefore(text, first).empty();
  if (first == npos || onlyAtStart) add({stripReleaseTags(text), {}});
  return names;
}

std::string fileTitle(std::string_view title, std::size_t maxBytes) {
  constexpr auto asBlank = "\"*/<>?[]|"sv;
  std::string text;
  for (std::size_t i = 0; i < title.size(); ++i) {
    if (const std::size_t control = controlLength(title, i); control > 0) {
      text += ' ';
      i += control - 1;
    } else if (title[i] != '\\') {
      text += asBlank.find(title[i]) != npos ? ' ' : title[i];
    }
  }
  std::string name = collapsed(text);
  name.erase(0, std::min(name.find_first_not_of(". "), name.size()));
  name = trim(shortened(name, maxBytes));
  return name.empty() ? "video" : name;
}

std::string buildMediaName(std::string_view title, std::optional<std::int32_t> year) {
  const std::string suffix = year ? " (" + std::to_string(*year) + ")" : "";
  return fileTitle(title, longestMediaName - suffix.size()) + suffix;
}

bool plausibleMatch(const ParsedName& wanted, std::string_view title, std::optional<std::int32_t> year) {
  const std::string plain = plainTitle(title);
  if (plain.empty() || plain != plainTitle(wanted.title)) return false;
  return !year || !wanted.year || std::abs(std::int64_t{*year} - *wanted.year) <= 1;
}

}  // namespace tavek

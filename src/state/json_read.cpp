#include "state/json_read.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <istream>
#include <limits>
#include <sstream>

#include "base/text.h"

namespace tavek {
namespace {

constexpr std::size_t npos = std::string::npos;

struct Escape {
  char letter;
  char byte;
};
constexpr std::array escapes{Escape{'n', '\n'}, Escape{'r', '\r'}, Escape{'t', '\t'},  Escape{'b', '\b'},
                             Escape{'f', '\f'}, Escape{'"', '"'},  Escape{'\\', '\\'}, Escape{'/', '/'}};

/// Right behind the quoted key, or npos.
std::size_t behindKey(const std::string& text, std::string_view key, std::size_t from = 0) {
  const std::size_t start = text.find('"' + std::string(key) + '"', from);
  return start == npos ? npos : start + key.size() + 2;
}

/// The next string at or behind a place.
std::optional<std::string> stringFrom(const std::string& text, std::size_t place) {
  std::size_t quote = text.find('"', place);
  if (quote == npos) return {};
  return parseString(text, quote).value_or("");
}

/// The comma or brace that ends the value of an object's member; npos if it is not well-formed.
std::size_t endOfValue(const std::string& text, std::size_t place) {
  std::string closers;
  while (place < text.size()) {
    const char c = text[place];
    if (c == '"') {
      if (!parseString(text, place)) return npos;
      continue;
    }
    if (closers.empty() && (c == ',' || c == '}')) return place;
    if (c == '{' || c == '[') {
      closers += c == '{' ? '}' : ']';
    } else if (c == '}' || c == ']') {
      if (closers.empty() || closers.back() != c) return npos;
      closers.pop_back();
    }
    ++place;
  }
  return npos;
}

}  // namespace

std::string readWholeFile(std::istream& stream) {
  std::ostringstream text;
  text << stream.rdbuf();
  return std::move(text).str();
}

std::size_t skipSpace(const std::string& text, std::size_t position) {
  while (position < text.size() && isAsciiSpace(text[position])) ++position;
  return position;
}

std::optional<std::size_t> findValue(const std::string& text, std::string_view key) {
  const std::size_t colon = text.find(':', behindKey(text, key));
  if (colon == npos) return {};
  return skipSpace(text, colon + 1);
}

std::optional<double> readNumber(const std::string& text, std::string_view key) {
  std::size_t place = findValue(text, key).value_or(text.size());
  if (text.compare(place, 1, "+") == 0) ++place;
  double number = 0;
  const auto [end, error] = std::from_chars(text.data() + place, text.data() + text.size(), number);
  return error == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> readInteger(const std::string& text, std::string_view key) {
  const char* start = text.c_str() + findValue(text, key).value_or(text.size());
  char* end = nullptr;
  const std::int64_t number = std::strtoll(start, &end, 10);
  return end != start ? std::optional(number) : std::nullopt;
}

std::optional<bool> readBool(const std::string& text, std::string_view key) {
  const std::size_t place = findValue(text, key).value_or(text.size());
  if (text.compare(place, 4, "true") == 0) return true;
  if (text.compare(place, 5, "false") == 0) return false;
  return {};
}

std::optional<std::string> readString(const std::string& text, std::string_view key) {
  return stringFrom(text, findValue(text, key).value_or(text.size()));
}

std::optional<std::string> readStringAt(const std::string& text,
                                        std::initializer_list<std::string_view> keys) {
  std::size_t place = 0;
  for (const std::string_view key : keys) {
    place = text.find(':', behindKey(text, key, place));
    if (place == npos) return {};
  }
  return stringFrom(text, place);
}

std::optional<std::string> readObject(const std::string& text, std::string_view key) {
  std::size_t place = behindKey(text, key);
  while (place != npos && text.compare(skipSpace(text, place), 1, ":") != 0)
    place = behindKey(text, key, place);
  const std::size_t open = text.find('{', place);
  const auto close = matchBrace(text, open);
  return close ? std::optional(text.substr(open, *close - open + 1)) : std::nullopt;
}

std::optional<std::size_t> findObjectStart(const std::string& text, std::string_view key) {
  const std::size_t open = text.find('{', behindKey(text, key));
  return open != npos ? std::optional(open) : std::nullopt;
}

std::vector<std::string> readStringArray(const std::string& text, std::string_view key) {
  std::vector<std::string> strings;
  std::size_t place = text.find('[', behindKey(text, key));
  if (place == npos) return strings;
  ++place;
  while (place < text.size() && text[place] != ']') {
    if (text[place] != '"') {
      ++place;
      continue;
    }
    auto string = parseString(text, place);
    if (!string) break;
    strings.push_back(std::move(*string));
  }
  return strings;
}

std::optional<std::size_t> matchBrace(const std::string& text, std::size_t open) {
  if (open >= text.size() || text[open] != '{') return {};
  std::size_t depth = 0;
  bool inString = false;
  for (std::size_t i = open; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') inString = !inString;
    if (inString && c == '\\') ++i;
    if (inString) continue;
    if (c == '{') ++depth;
    if (c == '}' && --depth == 0) return i;
  }
  return {};
}

bool isOneObject(const std::string& text) {
  const auto close = matchBrace(text, skipSpace(text, 0));
  return close && skipSpace(text, *close + 1) == text.size();
}

std::optional<std::string> parseString(const std::string& text, std::size_t& position) {
  if (position >= text.size() || text[position] != '"') return {};
  std::string string;
  for (std::size_t i = position + 1; i < text.size(); ++i) {
    if (text[i] == '"') {
      position = i + 1;
      return string;
    }
    if (text[i] != '\\') {
      string += text[i];
      continue;
    }
    if (++i == text.size()) break;
    for (const auto& [letter, byte] : escapes) {
      if (text[i] == letter) string += byte;
    }
  }
  return {};
}

std::vector<JsonMember> readMembers(const std::string& text) {
  std::vector<JsonMember> members;
  std::size_t place = skipSpace(text, 0);
  if (text.compare(place, 1, "{") != 0) return members;
  do {
    const std::size_t quote = skipSpace(text, place + 1);
    place = quote;
    if (!parseString(text, place)) break;
    const std::size_t keyEnd = place - 1;
    const std::size_t colon = skipSpace(text, place);
    if (text.compare(colon, 1, ":") != 0) break;
    place = endOfValue(text, colon + 1);
    if (place == npos) break;
    std::string value = trim(std::string_view(text).substr(colon + 1, place - colon - 1));
    if (value.empty()) break;
    members.push_back({text.substr(quote + 1, keyEnd - quote - 1), std::move(value)});
  } while (text[place] == ',');
  return members;
}

std::int64_t wholeNumber(double number) {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr double above = 0x1p63;
  if (number >= above) return Limits::max();
  if (!(number >= -above)) return Limits::min();
  return static_cast<std::int64_t>(number);
}

}  // namespace tavek

#include "state/json_read.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <istream>
#include <limits>
#include <set>
#include <sstream>

#include "base/text.h"
#include "state/json_write.h"

namespace tavek {
namespace {

constexpr std::size_t npos = std::string::npos;

struct Escape {
  char letter;
  char byte;
};
constexpr std::array escapes{Escape{'n', '\n'}, Escape{'r', '\r'}, Escape{'t', '\t'},  Escape{'b', '\b'},
                             Escape{'f', '\f'}, Escape{'"', '"'},  Escape{'\\', '\\'}, Escape{'/', '/'}};

/// Four hexadecimal digits, or none.
std::optional<std::uint32_t> codeUnitAt(const std::string& text, std::size_t place) {
  std::uint32_t unit = 0;
  const char* start = text.data() + std::min(place, text.size());
  const char* end = text.data() + std::min(place + 4, text.size());
  const auto [behind, error] = std::from_chars(start, end, unit, 16);
  return error == std::errc() && behind == start + 4 ? std::optional(unit) : std::nullopt;
}

constexpr bool isHighSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
constexpr bool isLowSurrogate(std::uint32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

void appendUtf8(std::string& text, std::uint32_t code) {
  const auto add = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
  if (code < 0x80) return add(code);
  if (code < 0x800) {
    add(0xC0 | code >> 6);
  } else {
    if (code < 0x10000) {
      add(0xE0 | code >> 12);
    } else {
      add(0xF0 | code >> 18);
      add(0x80 | (code >> 12 & 0x3F));
    }
    add(0x80 | (code >> 6 & 0x3F));
  }
  add(0x80 | (code & 0x3F));
}

/// The escape whose digits begin at `place`, which is led to the last of them; half of a pair that stands
/// alone is the replacement character. Without digits nothing is added.
void appendEscapedCode(std::string& string, const std::string& text, std::size_t& place) {
  const auto unit = codeUnitAt(text, place);
  if (!unit) return void(--place);
  place += 3;
  std::uint32_t code = *unit;
  if (isHighSurrogate(code) && text.compare(place + 1, 2, "\\u") == 0) {
    const auto low = codeUnitAt(text, place + 3);
    if (low && isLowSurrogate(*low)) {
      code = 0x10000 + ((code - 0xD800) << 10) + (*low - 0xDC00);
      place += 6;
    }
  }
  constexpr std::uint32_t replacement = 0xFFFD;
  appendUtf8(string, isHighSurrogate(code) || isLowSurrogate(code) ? replacement : code);
}

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

namespace {

bool startsWith(const std::string& text, std::size_t place, char c) {
  return place < text.size() && text[place] == c;
}

/// Leads the place behind a key that is not among the object's yet, and its colon.
bool passKey(const std::string& text, std::size_t& place, std::set<std::string>& keys) {
  const auto key = parseString(text, place);
  if (!key || !keys.insert(*key).second) return false;
  place = skipSpace(text, place);
  if (!startsWith(text, place, ':')) return false;
  place = skipSpace(text, place + 1);
  return true;
}

/// A string in one line, a number or a word.
bool passScalar(const std::string& text, std::size_t& place) {
  const std::size_t start = place;
  if (parseString(text, place)) return std::string_view(text).substr(start, place - start).find('\n') == npos;
  for (const std::string_view word : {"true", "false", "null"}) {
    if (text.compare(place, word.size(), word) != 0) continue;
    place += word.size();
    return true;
  }
  double number = 0;
  const auto [end, error] = std::from_chars(text.data() + place, text.data() + text.size(), number);
  place = static_cast<std::size_t>(end - text.data());
  return error != std::errc::invalid_argument;
}

}  // namespace

bool isWholeJson(const std::string& text) {
  struct Open {
    char closer;
    std::set<std::string> keys;
  };
  std::vector<Open> open;
  std::size_t place = skipSpace(text, 0);
  if (!startsWith(text, place, '{')) return false;
  for (;;) {
    const bool object = startsWith(text, place, '{');
    if (object || startsWith(text, place, '[')) {
      open.push_back({object ? '}' : ']', {}});
      place = skipSpace(text, place + 1);
      if (!startsWith(text, place, open.back().closer)) {
        if (object && !passKey(text, place, open.back().keys)) return false;
        continue;
      }
    } else if (!passScalar(text, place)) {
      return false;
    }
    place = skipSpace(text, place);
    while (!open.empty() && startsWith(text, place, open.back().closer)) {
      open.pop_back();
      place = skipSpace(text, place + 1);
    }
    if (open.empty()) return place == text.size();
    if (!startsWith(text, place, ',')) return false;
    place = skipSpace(text, place + 1);
    if (open.back().closer == '}' && !passKey(text, place, open.back().keys)) return false;
  }
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
    if (text[i] == 'u') {
      appendEscapedCode(string, text, ++i);
      continue;
    }
    for (const auto& [letter, byte] : escapes) {
      if (text[i] == letter) string += byte;
    }
  }
  return {};
}

bool isDamaged(const std::string& text) {
  return skipSpace(text, 0) != text.size() && !isWholeJson(text);
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

std::string knownPart(const std::string& text, std::span<const std::string_view> keys,
                      std::vector<JsonMember>& unknown) {
  const auto isKnown = [&](const JsonMember& member) {
    return std::ranges::find(keys, member.key) != keys.end();
  };
  std::vector<JsonMember> members = readMembers(text);
  const auto behind = std::stable_partition(members.begin(), members.end(), isKnown);
  unknown.assign(behind, members.end());
  members.erase(behind, members.end());
  return isWholeJson(text) ? compactObject(members) : text;
}

std::int64_t wholeNumber(double number) {
  using Limits = std::numeric_limits<std::int64_t>;
  constexpr double above = 0x1p63;
  if (number >= above) return Limits::max();
  if (!(number >= -above)) return Limits::min();
  return static_cast<std::int64_t>(number);
}

}  // namespace tavek

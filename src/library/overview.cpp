#include "library/overview.h"

#include <algorithm>
#include <charconv>
#include <fstream>

#include "base/text.h"
#include "library/file_types.h"

namespace tavek {
namespace {

constexpr std::streamsize mostBytes = 1 << 20;

/// The character of four hexadecimal digits, as far as it is one of ASCII.
char characterOf(std::string_view digits) {
  unsigned code = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
  const bool whole = digits.size() == 4 && result.ptr == digits.data() + digits.size();
  return whole && code < 128 ? static_cast<char>(code) : '?';
}

/// Up to the closing quote, or to the end.
std::string unescaped(std::string_view text) {
  std::string value;
  for (std::size_t i = 0; i < text.size() && text[i] != '"'; ++i) {
    if (text[i] != '\\') {
      value += text[i];
      continue;
    }
    const char code = ++i < text.size() ? text[i] : '\0';
    if (code == 'u') {
      value += characterOf(text.substr(i + 1, 4));
      i += 4;
    } else if (constexpr std::string_view codes = "nbftr\"/\\"; codes.find(code) != std::string_view::npos) {
      value += "     \"/\\"[codes.find(code)];
    }
  }
  return value;
}

std::string oneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    const bool blank = isAsciiSpace(c) || static_cast<unsigned char>(c) < ' ';
    if (!blank) line += c;
    if (blank && !line.empty() && line.back() != ' ') line += ' ';
  }
  return trim(line);
}

}  // namespace

std::optional<std::string> readOverview(const std::filesystem::path& path) {
  if (!isUsableFile(path)) return {};
  std::ifstream in(path, std::ios::binary);
  std::string text(static_cast<std::size_t>(mostBytes), '\0');
  in.read(text.data(), mostBytes);
  text.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  return overviewIn(text);
}

std::optional<std::string> overviewIn(std::string_view text) {
  std::size_t place = 0;
  for (const std::string_view mark : {"\"overview\"", ":", "\""}) {
    place = text.find(mark, place);
    if (place == std::string_view::npos) return {};
    place += mark.size();
  }
  std::string line = oneLine(unescaped(text.substr(place)));
  return line.empty() ? std::nullopt : std::optional(std::move(line));
}

}  // namespace tavek

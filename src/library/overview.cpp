#include "library/overview.h"

#include <array>
#include <charconv>
#include <fstream>

#include "base/text.h"

namespace tavek {
namespace {

constexpr std::size_t maxBytes = 1 << 20;

struct Escape {
  char letter;
  char meaning;
};
constexpr std::array escapes{
    Escape{'n', '\n'}, Escape{'b', '\b'}, Escape{'f', '\f'}, Escape{'t', '\t'},
    Escape{'r', '\r'}, Escape{'"', '"'},  Escape{'/', '/'},  Escape{'\\', '\\'},
};

/// What the escape at the head of the text stands for; takes it off. Nothing for one that is not known.
std::optional<char> takeEscape(std::string_view& text) {
  const char letter = text.front();
  text.remove_prefix(1);
  if (letter == 'u') {
    const std::string_view digits = text.substr(0, 4);
    unsigned code = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
    const bool whole = error == std::errc() && end == digits.data() + 4;
    if (!whole) return {};
    text.remove_prefix(4);
    return code < 128 ? static_cast<char>(code) : '?';
  }
  for (const Escape& escape : escapes) {
    if (escape.letter == letter) return escape.meaning;
  }
  return {};
}

/// A value without its opening quote, up to the closing one or the end.
std::string unescaped(std::string_view text) {
  std::string value;
  while (!text.empty() && text.front() != '"') {
    const char c = text.front();
    text.remove_prefix(1);
    if (c != '\\') {
      value += c;
    } else if (!text.empty()) {
      if (const auto meant = takeEscape(text)) value += *meant;
    }
  }
  return value;
}

std::string onOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (!isAsciiSpace(c)) {
      line += c;
    } else if (!line.empty() && line.back() != ' ') {
      line += ' ';
    }
  }
  if (line.ends_with(' ')) line.pop_back();
  return line;
}

}  // namespace

std::optional<std::string> overviewIn(std::string_view text) {
  constexpr std::string_view steps[] = {"\"overview\"", ":", "\""};
  for (const std::string_view step : steps) {
    const std::size_t at = text.find(step);
    if (at == std::string_view::npos) return {};
    text.remove_prefix(at + step.size());
  }
  std::string line = onOneLine(unescaped(text));
  return line.empty() ? std::nullopt : std::optional(std::move(line));
}

std::optional<std::string> readOverview(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string text(maxBytes, '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (in.gcount() <= 0) return {};
  text.resize(static_cast<std::size_t>(in.gcount()));
  return overviewIn(text);
}

}  // namespace tavek

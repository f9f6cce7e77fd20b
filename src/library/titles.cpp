#include "library/titles.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <utf8proc.h>

#include "base/text.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

constexpr std::array genericPosterNames{"poster"sv, "folder"sv, "cover"sv, "front"sv};

/// Latin letters that are no base letter with a mark, but are looked for under one.
struct Likeness {
  char32_t letter;
  char base;
};
constexpr std::array likenesses{Likeness{U'æ', 'a'}, Likeness{U'œ', 'o'}, Likeness{U'ø', 'o'},
                                Likeness{U'ł', 'l'}, Likeness{U'đ', 'd'}, Likeness{U'ð', 'd'},
                                Likeness{U'þ', 't'}, Likeness{U'ı', 'i'}, Likeness{U'ħ', 'h'}};

struct FreeDeleter {
  void operator()(utf8proc_uint8_t* text) const { std::free(text); }
};

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isAsciiLetterOrDigit(char32_t c) {
  return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9');
}

/// Letters, the marks that belong to them, and digits.
bool isWritten(char32_t c) {
  const utf8proc_category_t category = utf8proc_category(static_cast<utf8proc_int32_t>(c));
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

const utf8proc_uint8_t* bytesOf(std::string_view text) {
  return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

/// ASCII letters in lower case, and nothing else changed, where the text is no UTF-8.
std::string mapped(std::string_view text, int options) {
  if (isAscii(text)) return toLower(text);
  utf8proc_uint8_t* result = nullptr;
  const auto length = utf8proc_map(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &result,
                                   static_cast<utf8proc_option_t>(options));
  const std::unique_ptr<utf8proc_uint8_t, FreeDeleter> owner(result);
  if (length < 0) return toLower(text);
  return {reinterpret_cast<const char*>(result), static_cast<std::size_t>(length)};
}

std::string_view withoutPosterSuffix(std::string_view stem) {
  constexpr std::string_view suffix = ".poster";
  if (stem.size() > suffix.size() && stem.ends_with(suffix)) stem.remove_suffix(suffix.size());
  return stem;
}

}  // namespace

std::optional<char32_t> takeCharacter(std::string_view& text) {
  utf8proc_int32_t character = 0;
  const auto length = utf8proc_iterate(bytesOf(text), static_cast<utf8proc_ssize_t>(text.size()), &character);
  if (length <= 0) return {};
  text.remove_prefix(static_cast<std::size_t>(length));
  return static_cast<char32_t>(character);
}

std::string foldCase(std::string_view text) {
  return mapped(text, UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD);
}

bool losesLetters(std::string_view text) {
  if (isAscii(text)) return false;
  bool keeps = false;
  while (!text.empty()) {
    const auto character = takeCharacter(text);
    if (!character) return true;
    const bool ascii = *character < 0x80;
    if (!ascii && isWritten(*character)) return true;
    keeps = keeps || (ascii && isAsciiLetterOrDigit(*character));
  }
  return !keeps;
}

std::string normalizeTitle(std::string_view text) {
  const std::string folded = foldCase(text);
  if (losesLetters(folded)) return trim(folded);
  std::string title;
  for (const char c : folded) {
    if (isAsciiDigit(c) || (c >= 'a' && c <= 'z')) title += c;
    if (isAsciiSpace(c)) title += ' ';
  }
  return trim(title);
}

std::string baseLetters(std::string_view text) {
  const std::string plain = mapped(
      text, UTF8PROC_STABLE | UTF8PROC_DECOMPOSE | UTF8PROC_COMPAT | UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK);
  std::string letters;
  for (std::string_view rest = plain; !rest.empty();) {
    const auto character = takeCharacter(rest);
    if (!character) return {};
    const auto* like = std::ranges::find(likenesses, *character, &Likeness::letter);
    if (isAsciiLetterOrDigit(*character)) {
      letters += static_cast<char>(*character);
    } else if (like != likenesses.end()) {
      letters += like->base;
    } else if (letters.empty() && isWritten(*character)) {
      return {};
    }
  }
  return letters;
}

char letterOf(std::string_view title) {
  const std::string letters = baseLetters(title);
  if (letters.empty()) return 0;
  const char first = letters.front();
  return isAsciiDigit(first) ? first : static_cast<char>(first - 'a' + 'A');
}

bool isGenericPosterName(std::string_view lowerStem) {
  return std::ranges::find(genericPosterNames, lowerStem) != genericPosterNames.end();
}

bool standsForFolder(std::string_view stem) {
  return isGenericPosterName(toLower(withoutPosterSuffix(stem)));
}

std::string posterKeyOf(const std::filesystem::path& path) {
  return posterKeyOf(path.parent_path().filename().string(), path.stem().string());
}

std::string posterKeyOf(std::string_view folderName, std::string_view stem) {
  return normalizeTitle(standsForFolder(stem) ? folderName : withoutPosterSuffix(stem));
}

}  // namespace tavek

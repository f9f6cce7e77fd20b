#include "library/titles.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

constexpr std::array genericPosterNames{"poster"sv, "folder"sv, "cover"sv, "front"sv};

}  // namespace

std::string normalizeTitle(std::string_view text) {
  std::string title;
  for (const char c : toLower(text)) {
    if (isAsciiDigit(c) || (c >= 'a' && c <= 'z')) title += c;
    if (isAsciiSpace(c)) title += ' ';
  }
  return trim(title);
}

bool isGenericPosterName(std::string_view lowerStem) {
  return std::ranges::find(genericPosterNames, lowerStem) != genericPosterNames.end();
}

std::string posterKeyOf(const std::filesystem::path& path) {
  return posterKeyOf(path.parent_path().filename().string(), path.stem().string());
}

std::string posterKeyOf(std::string_view folderName, std::string_view stem) {
  constexpr std::string_view suffix = ".poster";
  if (stem.size() > suffix.size() && stem.ends_with(suffix)) stem.remove_suffix(suffix.size());
  return normalizeTitle(isGenericPosterName(toLower(stem)) ? folderName : stem);
}

}  // namespace tavek

#include "library/titles.h"

#include <algorithm>
#include <array>

#include "base/text.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

/// An image with one of these stems stands for the folder that holds it.
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

std::string posterKeyOf(const std::filesystem::path& path) {
  constexpr std::string_view suffix = ".poster";
  std::string stem = path.stem().string();
  if (stem.size() > suffix.size() && stem.ends_with(suffix)) stem.resize(stem.size() - suffix.size());
  const bool generic = std::ranges::find(genericPosterNames, toLower(stem)) != genericPosterNames.end();
  return normalizeTitle(generic ? path.parent_path().filename().string() : stem);
}

}  // namespace tavek

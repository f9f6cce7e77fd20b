#include "scan/tidy_rules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <sstream>
#include <string>

#include "base/text.h"
#include "library/file_types.h"
#include "library/match_key.h"
#include "library/titles.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t longestName = 180;

constexpr std::array extrasFolders{"behind the scenes"sv,
                                   "bonus"sv,
                                   "clips"sv,
                                   "deleted scenes"sv,
                                   "extra"sv,
                                   "extras"sv,
                                   "featurette"sv,
                                   "featurettes"sv,
                                   "interviews"sv,
                                   "other"sv,
                                   "sample"sv,
                                   "samples"sv,
                                   "scenes"sv,
                                   "shorts"sv,
                                   "special features"sv,
                                   "specials"sv,
                                   "trailer"sv,
                                   "trailers"sv};
constexpr std::array discFolders{"audio_ts"sv, "bdmv"sv, "certificate"sv, "hvdvd_ts"sv, "video_ts"sv};
/// Behind a "-", since films end in such words, too.
constexpr std::array bonusWords{"behindthescenes"sv, "bonus"sv, "clip"sv,   "deleted"sv,
                                "deletedscene"sv,    "extra"sv, "extras"sv, "featurette"sv,
                                "interview"sv,       "other"sv, "scene"sv,  "short"sv};
/// Behind any separator.
constexpr std::array surelyBonusWords{"sample"sv, "trailer"sv};
constexpr std::array partWords{"cd"sv, "disc"sv, "disk"sv, "dvd"sv, "part"sv, "pt"sv};

constexpr std::array subtitleExtensions{".ass"sv,  ".idx"sv,  ".lrc"sv, ".mpl2"sv, ".pjs"sv,
                                        ".sami"sv, ".smi"sv,  ".srt"sv, ".ssa"sv,  ".sub"sv,
                                        ".sup"sv,  ".ttml"sv, ".txt"sv, ".vtt"sv};
constexpr std::array pictureExtensions{".bmp"sv, ".gif"sv, ".jpeg"sv, ".jpg"sv,
                                       ".png"sv, ".tbn"sv, ".webp"sv};
constexpr std::array soundExtensions{".ac3"sv, ".dts"sv, ".eac3"sv, ".mka"sv, ".mks"sv, ".thd"sv};
constexpr auto noteExtension = ".nfo"sv;

constexpr std::array subtitleWords{"cc"sv,       "commentary"sv, "default"sv,   "forced"sv,  "foreign"sv,
                                   "full"sv,     "hi"sv,         "sdh"sv,       "signs"sv,   "songs"sv,
                                   "chinese"sv,  "danish"sv,     "dutch"sv,     "english"sv, "finnish"sv,
                                   "french"sv,   "german"sv,     "greek"sv,     "hebrew"sv,  "italian"sv,
                                   "japanese"sv, "korean"sv,     "norwegian"sv, "polish"sv,  "portuguese"sv,
                                   "russian"sv,  "spanish"sv,    "swedish"sv,   "turkish"sv};
constexpr std::array pictureWords{"back"sv,      "backdrop"sv, "background"sv, "banner"sv,    "clearart"sv,
                                  "clearlogo"sv, "cover"sv,    "disc"sv,       "discart"sv,   "fanart"sv,
                                  "folder"sv,    "front"sv,    "keyart"sv,     "landscape"sv, "logo"sv,
                                  "poster"sv,    "thumb"sv};

template <typename Words>
bool isAmong(const Words& words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

bool isAsciiLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// "en", "eng", "pt-BR", "zh-Hans".
bool isLanguageCode(std::string_view word) {
  const std::string_view language = word.substr(0, word.find('-'));
  if (language.size() < 2 || language.size() > 3 || !std::ranges::all_of(language, isAsciiLetter))
    return false;
  if (language.size() == word.size()) return true;
  const std::string_view region = word.substr(language.size() + 1);
  return region.size() >= 2 && region.size() <= 4 &&
         std::ranges::all_of(region, [](char c) { return isAsciiLetter(c) || isAsciiDigit(c); });
}

/// What stands between a stem and an extension: nothing, or ".word" as often as may be.
template <typename IsWord>
bool isOfWords(std::string_view middle, std::string_view separators, IsWord isWord) {
  while (!middle.empty()) {
    if (separators.find(middle.front()) == std::string_view::npos) return false;
    middle.remove_prefix(1);
    const std::size_t end = std::min(middle.find('.'), middle.size());
    if (!isWord(middle.substr(0, end))) return false;
    middle.remove_prefix(end);
  }
  return true;
}

bool isSubtitleWord(std::string_view word) {
  return isLanguageCode(word) || isAmong(subtitleWords, toLower(word)) ||
         (word.size() <= 2 && !word.empty() && std::ranges::all_of(word, isAsciiDigit));
}

bool isPictureWord(std::string_view word) {
  std::string lower = toLower(word);
  while (!lower.empty() && isAsciiDigit(lower.back())) lower.pop_back();
  return isAmong(pictureWords, lower);
}

struct Part {
  std::string rest;  ///< of the stem, without the number
  bool found = false;
};

/// The stem with the number of its part cut out.
Part partOf(std::string_view stem) {
  const std::string lower = toLower(stem);
  for (std::size_t at = 1; at < lower.size(); ++at) {
    if (isAsciiLetter(lower[at - 1]) || isAsciiDigit(lower[at - 1])) continue;
    for (const std::string_view word : partWords) {
      if (lower.compare(at, word.size(), word) != 0) continue;
      std::size_t digit = at + word.size();
      while (digit < lower.size() && " ._-"sv.find(lower[digit]) != std::string_view::npos) ++digit;
      std::size_t end = digit;
      while (end < lower.size() && isAsciiDigit(lower[end])) ++end;
      if (end > digit && end - digit <= 2) return {lower.substr(0, digit) + "#" + lower.substr(end), true};
    }
  }
  return {};
}

/// Up to the year, unless the name begins with it or tells several.
std::string titleOf(std::string_view name) {
  std::string spaced(name);
  std::ranges::replace_if(
      spaced, [](char c) { return "._()[]"sv.find(c) != std::string_view::npos; }, ' ');
  std::istringstream words(spaced);
  std::string title;
  std::string before;
  int years = 0;
  for (std::string word; words >> word;) {
    if (!title.empty() && isYear(word) && ++years == 1) before = title;
    title += word + " ";
  }
  return normalizeTitle(years == 1 ? before : title);
}

}  // namespace

bool isFitName(std::string_view stem) {
  const bool plain = std::ranges::none_of(stem, [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7f || c == '/';
  });
  return plain && !stem.empty() && stem.front() != '.' && stem.size() <= longestName;
}

bool isExtrasFolder(std::string_view name) {
  return isAmong(extrasFolders, toLower(name));
}

bool isDiscFolder(std::string_view name) {
  return isAmong(discFolders, toLower(name));
}

bool isBonus(std::string_view stem) {
  if (isExtra(stem)) return true;
  const std::size_t separator = stem.find_last_of("-._ ");
  if (separator == std::string_view::npos) return false;
  const std::string last = toLower(stem.substr(separator + 1));
  return isAmong(surelyBonusWords, last) || (stem[separator] == '-' && isAmong(bonusWords, last));
}

bool isSoundTrack(const std::filesystem::path& name) {
  return isAmong(soundExtensions, lowerExtension(name));
}

bool areParts(std::string_view a, std::string_view b) {
  // Most names differ early, and a room may hold thousands.
  const auto [inA, inB] = std::ranges::mismatch(a, b);
  if ((inA == a.end() || !isAsciiDigit(*inA)) && (inB == b.end() || !isAsciiDigit(*inB))) return false;
  const Part first = partOf(a);
  const Part second = partOf(b);
  return first.found && second.found && first.rest == second.rest && a != b;
}

std::string_view companionEnding(std::string_view name, std::string_view stem) {
  if (!name.starts_with(stem) || stem.empty()) return {};
  const std::string_view ending = name.substr(stem.size());
  const std::size_t dot = ending.rfind('.');
  if (dot == std::string_view::npos) return {};
  const std::string extension = toLower(ending.substr(dot));
  const std::string_view middle = ending.substr(0, dot);
  const bool belongs = (extension == noteExtension && middle.empty()) ||
                       ((isAmong(subtitleExtensions, extension) || isAmong(soundExtensions, extension)) &&
                        isOfWords(middle, ".-_", isSubtitleWord)) ||
                       (isAmong(pictureExtensions, extension) && isOfWords(middle, ".-", isPictureWord));
  return belongs ? ending : std::string_view();
}

bool haveOneTitle(std::string_view a, std::string_view b) {
  return titleOf(a) == titleOf(b);
}

}  // namespace tavek

#include "library/episode_name.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "base/text.h"
#include "library/titles.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

/// What a season is called, folded.
constexpr std::array seasonWords{"season"sv,    "series"sv,   "staffel"sv, "saison"sv,
                                 "temporada"sv, "stagione"sv, "сезон"sv};

std::string_view digitsAt(std::string_view text, std::size_t position) {
  std::size_t end = position;
  while (end < text.size() && isAsciiDigit(text[end])) ++end;
  return text.substr(position, end - position);
}

int numberOf(std::string_view digits) {
  int number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc::result_out_of_range ? std::numeric_limits<int>::max() : number;
}

/// Where an episode marker stands in a text, and its digits.
struct Marker {
  std::string_view season;
  std::string_view episode;
  std::size_t end = 0;
};

/// Digits, the letter, digits, from the position on; the letter is a lower-case one and stands for both
/// cases.
std::optional<Marker> numberPairAt(std::string_view text, std::size_t position, char letter) {
  const std::string_view season = digitsAt(text, position);
  const std::size_t between = position + season.size();
  if (season.empty() || between >= text.size() || toLower(text.substr(between, 1))[0] != letter) return {};
  const std::string_view episode = digitsAt(text, between + 1);
  if (episode.empty()) return {};
  return Marker{season, episode, between + 1 + episode.size()};
}

/// S<digits>E<digits>
std::optional<Marker> findTag(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != 'S' && text[i] != 's') continue;
    if (const auto marker = numberPairAt(text, i + 1, 'e')) return marker;
  }
  return {};
}

/// <digits>x<digits>
std::optional<Marker> findCross(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); i += std::max<std::size_t>(digitsAt(text, i).size(), 1)) {
    if (const auto marker = numberPairAt(text, i, 'x')) return marker;
  }
  return {};
}

bool isWordCharacter(char c) {
  return isAsciiDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         static_cast<unsigned char>(c) >= 0x80;
}

/// One or two digits, x, two or three digits, as a word.
std::optional<Marker> findCrossWord(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i > 0 && isWordCharacter(text[i - 1])) continue;
    const auto marker = numberPairAt(text, i, 'x');
    if (!marker || marker->season.size() > 2 || marker->episode.size() < 2 || marker->episode.size() > 3)
      continue;
    if (marker->end == text.size() || !isWordCharacter(text[marker->end])) return marker;
  }
  return {};
}

/// The digits behind blanks, from the position on.
std::string_view numberAfter(std::string_view text, std::size_t position) {
  return digitsAt(text, std::min(text.find_first_not_of(' ', position), text.size()));
}

/// "2. Staffel", "1ª temporada": the number before the word, with little between.
std::string_view numberBeforeWord(std::string_view folded) {
  constexpr std::size_t longestOrdinal = 4;
  const std::string_view digits = digitsAt(folded, 0);
  const auto* word = std::ranges::find_if(seasonWords, [&](auto each) { return folded.ends_with(each); });
  if (digits.empty() || word == seasonWords.end()) return {};
  const std::size_t between = folded.size() - word->size() - digits.size();
  return between <= longestOrdinal ? digits : std::string_view();
}

std::string titleAfter(std::string_view stem, std::size_t end) {
  const std::string_view rest = stem.substr(end);
  return std::string(rest.substr(std::min(rest.find_first_not_of(" _-."), rest.size())));
}

}  // namespace

std::optional<SeasonEpisode> parseSeasonEpisode(std::string_view text) {
  auto tag = findTag(text);
  if (!tag) tag = findCrossWord(text);
  if (!tag) return {};
  return SeasonEpisode{numberOf(tag->season), numberOf(tag->episode)};
}

bool trackLess(const std::filesystem::path& a, const std::filesystem::path& b) {
  const int na = numberOf(digitsAt(a.stem().string(), 0));
  const int nb = numberOf(digitsAt(b.stem().string(), 0));
  if (na > 0 && nb > 0) return na < nb;
  if (na > 0 || nb > 0) return na > 0;
  return toLower(a.filename().string()) < toLower(b.filename().string());
}

EpisodeLabel episodeLabelOf(std::string_view stem) {
  constexpr std::string_view stillSuffix = "-thumb";
  if (stem.ends_with(stillSuffix)) stem.remove_suffix(stillSuffix.size());
  if (const auto tag = findTag(stem)) {
    return {"S" + std::string(tag->season), "E" + std::string(tag->episode), titleAfter(stem, tag->end)};
  }
  if (const auto cross = findCross(stem)) {
    return {std::string(cross->season), std::string(cross->episode), titleAfter(stem, cross->end)};
  }
  return {};
}

std::string shownSeason(std::string_view tag) {
  if (tag.starts_with('S')) tag.remove_prefix(1);
  const std::size_t first = tag.find_first_not_of('0');
  return std::string(tag.substr(first != std::string_view::npos ? first : 0));
}

std::string shownEpisode(std::string_view tag) {
  return std::string(tag.starts_with('E') ? tag.substr(1) : tag);
}

bool beginsWithEpisodeTag(std::string_view stem) {
  const auto tag = findTag(stem);
  if (tag && tag->season.data() == stem.data() + 1)
    return tag->season.size() == 2 && tag->episode.size() >= 2;
  const auto cross = findCrossWord(stem);
  return cross && cross->season.data() == stem.data();
}

std::string seasonOfFolder(std::string_view name) {
  const std::string folded = trim(foldCase(name));
  if (folded == "special" || folded == "specials") return "0";
  if (folded.starts_with('s')) {
    const std::string_view digits = digitsAt(folded, 1);
    if (!digits.empty()) return shownSeason(digits);
  }
  for (const std::string_view word : seasonWords) {
    for (std::size_t at = folded.find(word); at != std::string::npos; at = folded.find(word, at + 1)) {
      const std::string_view digits = numberAfter(folded, at + word.size());
      if (!digits.empty()) return shownSeason(digits);
    }
  }
  return shownSeason(numberBeforeWord(folded));
}

bool isSeasonFolder(std::string_view name) {
  const std::string folded = foldCase(name);
  if (folded.starts_with("season") || folded == "special" || folded == "specials") return true;
  if (folded.starts_with('s') && !digitsAt(folded, 1).empty()) return true;
  if (!numberBeforeWord(trim(folded)).empty()) return true;
  return std::ranges::any_of(seasonWords, [&](std::string_view word) {
    return folded.starts_with(word) && !numberAfter(folded, word.size()).empty();
  });
}

}  // namespace tavek

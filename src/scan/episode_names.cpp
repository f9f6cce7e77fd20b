#include "scan/episode_names.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "base/text.h"
#include "scan/names.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

constexpr std::array releaseTags{
    "web"sv,    "webdl"sv,  "webrip"sv, "bluray"sv,   "bdrip"sv, "hdrip"sv,   "dvdrip"sv,   "hdtv"sv,
    "remux"sv,  "proper"sv, "repack"sv, "extended"sv, "uncut"sv, "limited"sv, "complete"sv, "full"sv,
    "uhd"sv,    "4k"sv,     "hdr"sv,    "hdr10"sv,    "sdr"sv,   "dv"sv,      "dolby"sv,    "atmos"sv,
    "truehd"sv, "dts"sv,    "aac"sv,    "ddp"sv,      "ddp5"sv,  "ddp51"sv,   "amzn"sv,     "nf"sv,
    "hulu"sv,   "dsnp"sv,   "pmtp"sv,   "amznd"sv,    "x264"sv,  "x265"sv,    "h264"sv,     "h265"sv,
    "hevc"sv,   "avc"sv,    "10bit"sv,  "8bit"sv};

constexpr std::size_t longestTitle = 160;

bool isAlnum(char c) {
  return isAsciiDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::size_t behindDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && isAsciiDigit(text[at])) ++at;
  return at;
}

std::size_t behindSpace(std::string_view text, std::size_t at) {
  while (at < text.size() && isAsciiSpace(text[at])) ++at;
  return at;
}

/// None for one that no number of an episode is as large as.
std::optional<std::int32_t> numberIn(std::string_view digits) {
  std::int32_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (result.ec != std::errc() || number > 99'999) return {};
  return number;
}

std::optional<EpisodeRef> refOf(std::string_view text, std::size_t start, std::size_t from, std::size_t end) {
  const auto number = numberIn(text.substr(from, end - from));
  return number ? std::optional(EpisodeRef{*number, start, end}) : std::nullopt;
}

/// s, digits, e, digits.
std::optional<EpisodeRef> seasonEpisodeMark(std::string_view text, std::size_t from) {
  for (std::size_t at = from; at + 4 <= text.size(); ++at) {
    if (text[at] != 's') continue;
    const std::size_t e = behindDigits(text, at + 1);
    if (e == at + 1 || e >= text.size() || text[e] != 'e') continue;
    const std::size_t end = behindDigits(text, e + 1);
    if (end > e + 1) return refOf(text, at, e + 1, end);
  }
  return {};
}

/// Digits, x, digits.
std::optional<EpisodeRef> crossMark(std::string_view text, std::size_t from) {
  for (std::size_t at = from; at < text.size(); ++at) {
    if (!isAsciiDigit(text[at])) continue;
    const std::size_t x = behindDigits(text, at);
    const std::size_t end = x < text.size() && text[x] == 'x' ? behindDigits(text, x + 1) : 0;
    // The measures of a picture are no episode.
    if (end > x + 1 && x - at <= 2 && end - x - 1 <= 3) return refOf(text, at, x + 1, end);
    at = x;
  }
  return {};
}

std::optional<EpisodeRef> wordMark(std::string_view text, std::size_t from) {
  for (std::size_t at = from; at < text.size(); ++at) {
    if (at > 0 && isAlnum(text[at - 1])) continue;
    for (const std::string_view word : {"episode"sv, "ep"sv, "e"sv}) {
      if (!text.substr(at).starts_with(word)) continue;
      const std::size_t digits = behindSpace(text, at + word.size());
      const std::size_t end = behindDigits(text, digits);
      if (end == digits) continue;
      if (const auto ref = refOf(text, at, digits, end); ref && ref->episode > 0) return ref;
      break;
    }
  }
  return {};
}

std::optional<EpisodeRef> leadingNumber(std::string_view text) {
  const std::size_t start = behindSpace(text, 0);
  const std::size_t end = behindDigits(text, start);
  if (end == start || end > start + 2) return {};
  const auto ref = refOf(text, start, start, end);
  return ref && ref->episode > 0 ? ref : std::nullopt;
}

/// A range or a list of numbers goes on behind a mark: "E02", "x02", "-E02", "-02", "+03".
bool goesOn(std::string_view text, std::size_t end) {
  const std::size_t at = std::min(text.find_first_not_of("-+& _.", end), text.size());
  const std::string_view between = text.substr(end, at - end);
  const bool joined =
      between.find_first_of("-+&") != std::string_view::npos && between.find(' ') == std::string_view::npos;
  const bool lettered = text.substr(at, 1) == "e" || (between.empty() && text.substr(at, 1) == "x");
  const std::size_t digits = lettered ? at + 1 : at;
  const std::size_t behind = behindDigits(text, digits);
  if (behind == digits || (behind < text.size() && isAlnum(text[behind]))) return false;
  if (lettered) return true;
  return joined && behind - digits <= 3;
}

/// The lower-cased letters and digits of a word.
std::string plainWord(std::string_view word) {
  std::string plain;
  for (const char c : word) {
    if (isAlnum(c)) plain += c;
  }
  return toLower(plain);
}

/// The word without what stands round it, in lower case.
std::string coreOf(std::string_view word) {
  while (!word.empty() && !isAlnum(word.front())) word.remove_prefix(1);
  while (!word.empty() && !isAlnum(word.back())) word.remove_suffix(1);
  return toLower(word);
}

bool isReleaseTag(const std::string& core, const std::string& plain, const std::string& nextPlain) {
  const bool height = plain.size() >= 4 && plain.back() == 'p' && behindDigits(plain, 0) == plain.size() - 1;
  const auto begins = [](const std::string& text, std::string_view head) { return text.starts_with(head); };
  return height || std::ranges::find(releaseTags, plain) != releaseTags.end() ||
         (core == "h" && (begins(nextPlain, "265") || begins(nextPlain, "264"))) || begins(plain, "h264") ||
         begins(plain, "h265") || begins(plain, "x264") || begins(plain, "x265");
}

std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  for (std::size_t at = behindSpace(text, 0); at < text.size(); at = behindSpace(text, at)) {
    std::size_t end = at;
    while (end < text.size() && !isAsciiSpace(text[end])) ++end;
    words.push_back(text.substr(at, end - at));
    at = end;
  }
  return words;
}

std::string twoDigits(std::int32_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::optional<EpisodeRef> findEpisodeMark(std::string_view stem) {
  const std::string text = toLower(stem);
  if (auto ref = seasonEpisodeMark(text, 0)) return ref;
  if (auto ref = crossMark(text, 0)) return ref;
  if (auto ref = wordMark(text, 0)) return ref;
  return leadingNumber(text);
}

bool hasSeveralMarks(std::string_view stem) {
  const std::string text = toLower(stem);
  for (const auto find : {seasonEpisodeMark, crossMark, wordMark}) {
    const auto first = find(text, 0);
    if (!first) continue;
    return goesOn(text, first->end) || find(text, first->end).has_value();
  }
  return false;
}

std::optional<std::int32_t> seasonNumberOf(std::string_view folderName) {
  const std::string name = toLower(folderName);
  constexpr std::string_view word = "season";
  if (!name.starts_with(word)) return {};
  const std::size_t digits = behindSpace(name, word.size());
  const auto season = numberIn(std::string_view(name).substr(digits, behindDigits(name, digits) - digits));
  return season && *season > 0 ? season : std::nullopt;
}

std::string cleanName(std::string_view text) {
  std::string name(text);
  std::ranges::replace_if(
      name, [](char c) { return c == '_' || c == '.'; }, ' ');
  name = trim(name);
  const std::size_t first = name.find_first_not_of("_-.");
  if (first == std::string::npos) return {};
  return trim(name.substr(first, name.find_last_not_of("_-.") - first + 1));
}

std::string stripReleaseTags(std::string_view title) {
  const std::vector<std::string_view> words = wordsOf(title);
  std::string kept;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string core = coreOf(words[i]);
    if (core.empty()) continue;
    const std::string next = i + 1 < words.size() ? plainWord(coreOf(words[i + 1])) : "";
    if (isReleaseTag(core, plainWord(core), next)) break;
    kept += (kept.empty() ? "" : " ") + std::string(words[i]);
  }
  return cleanName(kept);
}

std::string episodeMark(std::int32_t season, std::int32_t episode) {
  return "S" + twoDigits(season) + "E" + twoDigits(episode);
}

std::string episodeStem(std::string_view stem, std::int32_t season, const EpisodeRef& mark,
                        std::string_view seriesTitle, std::optional<std::string_view> serviceTitle) {
  std::string title = serviceTitle ? cleanName(*serviceTitle) : "";
  if (title.empty()) {
    title = cleanName(stem.substr(mark.end));
    if (title.empty()) title = cleanName(stem.substr(0, mark.start));
    if (!seriesTitle.empty() && cleanName(seriesTitle) == title) title.clear();
    // A title that the service tells may hold such words; in a file's name they tell of the file.
    title = stripReleaseTags(title);
  }
  if (title.empty()) title = "Episode " + twoDigits(mark.episode);
  return episodeMark(season, mark.episode) + " - " + fitForFileName(title, longestTitle);
}

}  // namespace tavek

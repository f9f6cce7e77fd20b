#include "scan/episode_stem.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <vector>

#include "base/text.h"
#include "scan/names.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

/// Words that tell how a file was made, and those of them that are words of titles as well.
constexpr std::array sureTags{
    "webdl"sv, "webrip"sv, "bluray"sv, "bdrip"sv, "hdrip"sv, "dvdrip"sv, "hdtv"sv,  "remux"sv,  "repack"sv,
    "uhd"sv,   "4k"sv,     "hdr"sv,    "hdr10"sv, "sdr"sv,   "dv"sv,     "atmos"sv, "truehd"sv, "dts"sv,
    "aac"sv,   "ddp"sv,    "ddp5"sv,   "ddp51"sv, "amzn"sv,  "nf"sv,     "hulu"sv,  "dsnp"sv,   "pmtp"sv,
    "amznd"sv, "x264"sv,   "x265"sv,   "h264"sv,  "h265"sv,  "hevc"sv,   "avc"sv,   "10bit"sv,  "8bit"sv};
constexpr std::array ordinaryTags{"web"sv,     "proper"sv,   "extended"sv, "uncut"sv,
                                  "limited"sv, "complete"sv, "full"sv,     "dolby"sv};
constexpr std::array codecStarts{"h264"sv, "h265"sv, "x264"sv, "x265"sv};

/// Bytes beyond ASCII belong to letters of other scripts.
bool isWordByte(char c) {
  return isAsciiDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
         static_cast<unsigned char>(c) >= 0x80;
}

std::string_view digitsAt(std::string_view text, std::size_t at) {
  std::size_t end = std::min(at, text.size());
  const std::size_t start = end;
  while (end < text.size() && isAsciiDigit(text[end])) ++end;
  return text.substr(start, end - start);
}

std::size_t behindSpace(std::string_view text, std::size_t at) {
  while (at < text.size() && isAsciiSpace(text[at])) ++at;
  return at;
}

/// None for no digits and for more than the type holds.
std::optional<std::int32_t> numberOf(std::string_view digits) {
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

/// The episode whose digits stand behind `from` and any white space, for a mark that begins at `start`.
std::optional<EpisodeRef> refAt(std::string_view text, std::size_t start, std::size_t from) {
  const std::size_t place = behindSpace(text, from);
  const std::string_view digits = digitsAt(text, place);
  const auto number = numberOf(digits);
  if (!number) return {};
  return EpisodeRef{*number, start, place + digits.size()};
}

/// s1e2
std::optional<EpisodeRef> findTag(std::string_view lower, std::size_t from) {
  for (std::size_t at = from; at < lower.size(); ++at) {
    if (lower[at] != 's') continue;
    const std::string_view season = digitsAt(lower, at + 1);
    const std::size_t middle = at + 1 + season.size();
    if (season.empty() || middle >= lower.size() || lower[middle] != 'e') continue;
    if (digitsAt(lower, middle + 1).empty()) continue;
    if (const auto ref = refAt(lower, at, middle + 1)) return ref;
  }
  return {};
}

/// 1x2; neither the size of a picture nor what follows the number of channels in "5.1x264".
std::optional<EpisodeRef> findCross(std::string_view lower, std::size_t from) {
  constexpr std::size_t longestSeason = 2;
  constexpr std::size_t longestEpisode = 3;
  for (std::size_t at = from; at < lower.size();) {
    const std::string_view season = digitsAt(lower, at);
    const std::size_t middle = at + season.size();
    const std::size_t start = at;
    at = std::max(middle, at + 1);
    if (season.empty() || season.size() > longestSeason || middle >= lower.size() || lower[middle] != 'x')
      continue;
    const std::string_view episode = digitsAt(lower, middle + 1);
    if (episode.empty() || episode.size() > longestEpisode || episode == "264" || episode == "265") continue;
    return refAt(lower, start, middle + 1);
  }
  return {};
}

/// Behind "episode", "ep" or "e" at this place; `at` itself where none of them stands.
std::size_t behindEpisodeWord(std::string_view lower, std::size_t at) {
  for (const std::string_view word : {"episode"sv, "ep"sv, "e"sv}) {
    if (lower.substr(at).starts_with(word)) return at + word.size();
  }
  return at;
}

/// ep 2
std::optional<EpisodeRef> findWord(std::string_view lower) {
  for (std::size_t at = 0; at < lower.size(); ++at) {
    if (lower[at] != 'e' || (at > 0 && isWordByte(lower[at - 1]))) continue;
    const auto ref = refAt(lower, at, behindEpisodeWord(lower, at));
    if (ref && ref->episode > 0) return ref;
  }
  return {};
}

/// 2 or 02 before all else
std::optional<EpisodeRef> findStart(std::string_view lower) {
  constexpr std::size_t mostDigits = 2;
  const std::size_t at = behindSpace(lower, 0);
  const auto ref = refAt(lower, at, at);
  return ref && ref->episode > 0 && ref->end - at <= mostDigits ? ref : std::nullopt;
}

std::optional<EpisodeRef> findMark(std::string_view lower) {
  if (const auto tag = findTag(lower, 0)) return tag;
  if (const auto cross = findCross(lower, 0)) return cross;
  if (const auto word = findWord(lower)) return word;
  return findStart(lower);
}

/// What follows a mark as its continuation: "E02", "-E02", " & Episode 2", or "-02".
std::optional<EpisodeRef> findContinuation(std::string_view lower, const EpisodeRef& before) {
  const std::size_t at = std::min(lower.find_first_not_of(" ._,-+&~", before.end), lower.size());
  const std::size_t behind = behindEpisodeWord(lower, at);
  if (behind > at) return refAt(lower, at, behind);
  const bool joined = at == before.end + 1 && "-+&~"sv.find(lower[before.end]) != std::string_view::npos;
  const std::string_view digits = digitsAt(lower, at);
  const std::size_t end = at + digits.size();
  constexpr std::size_t mostDigits = 3;
  if (!joined || digits.size() > mostDigits || (end < lower.size() && isWordByte(lower[end]))) return {};
  const auto ref = refAt(lower, at, at);
  return ref && ref->episode > before.episode ? ref : std::nullopt;
}

std::string plainWord(std::string_view word) {
  std::string plain;
  std::ranges::copy_if(word, std::back_inserter(plain), isWordByte);
  return toLower(plain);
}

std::string_view coreOf(std::string_view word) {
  while (!word.empty() && !isWordByte(word.front())) word.remove_prefix(1);
  while (!word.empty() && !isWordByte(word.back())) word.remove_suffix(1);
  return word;
}

std::vector<std::string_view> wordsOf(std::string_view text) {
  std::vector<std::string_view> words;
  for (std::size_t at = behindSpace(text, 0); at < text.size(); at = behindSpace(text, at)) {
    const std::size_t start = at;
    while (at < text.size() && !isAsciiSpace(text[at])) ++at;
    words.push_back(text.substr(start, at - start));
  }
  return words;
}

/// "1080p"
bool isPictureHeight(std::string_view plain) {
  constexpr std::size_t shortest = 4;
  return plain.size() >= shortest && plain.back() == 'p' && digitsAt(plain, 0).size() == plain.size() - 1;
}

enum class TagKind { None, Ordinary, Sure };

/// What a word tells of the file; the one behind it counts where a codec's name is two words.
TagKind tagKind(std::string_view word, std::string_view next) {
  const std::string_view core = coreOf(word);
  const std::string plain = plainWord(core);
  const std::string nextPlain = plainWord(next);
  const auto begins = [](std::string_view text) {
    return [text](std::string_view start) { return text.starts_with(start); };
  };
  if (isPictureHeight(plain) || std::ranges::any_of(codecStarts, begins(plain))) return TagKind::Sure;
  if (plain == "h" && core.size() == 1 && (nextPlain.starts_with("264") || nextPlain.starts_with("265")))
    return TagKind::Sure;
  if (std::ranges::find(sureTags, plain) != sureTags.end()) return TagKind::Sure;
  return std::ranges::find(ordinaryTags, plain) != ordinaryTags.end() ? TagKind::Ordinary : TagKind::None;
}

bool hasSureTag(std::string_view title) {
  const auto words = wordsOf(title);
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (tagKind(words[i], i + 1 < words.size() ? words[i + 1] : "") == TagKind::Sure) return true;
  }
  return false;
}

std::string twoDigits(std::int32_t number) {
  const std::string text = std::to_string(number);
  return text.size() < 2 ? "0" + text : text;
}

/// What the file's name says of the title, tags included.
std::string titleInStem(std::string_view stem, const EpisodeRef& mark) {
  std::string title = cleanName(stem.substr(mark.end));
  return title.empty() ? cleanName(stem.substr(0, mark.start)) : title;
}

}  // namespace

std::optional<EpisodeRef> findEpisodeMark(std::string_view stem) {
  return findMark(toLower(stem));
}

std::size_t episodeMarkCount(std::string_view stem) {
  const std::string lower = toLower(stem);
  // What was not found once is not behind that either.
  bool tags = true;
  bool crosses = true;
  const auto findNext = [&](const EpisodeRef& mark) {
    auto next = tags ? findTag(lower, mark.end) : std::nullopt;
    tags = next.has_value();
    if (!next && crosses) crosses = (next = findCross(lower, mark.end)).has_value();
    return next;
  };
  const auto first = findMark(lower);
  if (!first) return 0;
  // Tags go before crosses, so there may be one of these before it.
  const auto earlier = findCross(std::string_view(lower).substr(0, first->start), 0);
  std::size_t count = earlier && earlier->episode != first->episode ? 1 : 0;
  for (auto mark = first; mark; ++count) {
    auto next = findContinuation(lower, *mark);
    if (!next) next = findNext(*mark);
    // "S01E07 - Episode 07" tells of one.
    while (next && next->episode == mark->episode) next = findNext(*next);
    mark = next;
  }
  return count;
}

std::string cleanName(std::string_view text) {
  std::string spaced(text);
  std::ranges::replace_if(
      spaced, [](char c) { return c == '_' || c == '.'; }, ' ');
  const std::string trimmed = trim(spaced);
  const std::size_t start = trimmed.find_first_not_of("_-.");
  if (start == std::string::npos) return {};
  return trim(std::string_view(trimmed).substr(start, trimmed.find_last_not_of("_-.") - start + 1));
}

std::string stripReleaseTags(std::string_view title) {
  const auto words = wordsOf(title);
  std::string kept;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (coreOf(words[i]).empty()) continue;
    if (tagKind(words[i], i + 1 < words.size() ? words[i + 1] : "") != TagKind::None) break;
    if (!kept.empty()) kept += ' ';
    kept += words[i];
  }
  return cleanName(kept);
}

std::optional<std::int32_t> seasonNumberOf(std::string_view folderName) {
  constexpr auto word = "season"sv;
  if (toLower(folderName.substr(0, word.size())) != word) return {};
  const auto season = numberOf(digitsAt(folderName, behindSpace(folderName, word.size())));
  return season && *season > 0 ? season : std::nullopt;
}

std::string episodeTag(std::int32_t season, std::int32_t episode) {
  return "S" + twoDigits(season) + "E" + twoDigits(episode);
}

std::optional<std::string> episodeStem(std::string_view stem, std::string_view seasonFolder,
                                       std::string_view seriesTitle,
                                       std::optional<std::string_view> tableTitle) {
  const auto season = seasonNumberOf(seasonFolder);
  const auto mark = findEpisodeMark(stem);
  if (!season || !mark || episodeMarkCount(stem) != 1) return {};
  const std::string start = episodeTag(*season, mark->episode) + " - ";
  const bool fromTable = tableTitle && !tableTitle->empty();
  std::string title = fromTable ? cleanName(*tableTitle) : titleInStem(stem, *mark);
  if (!seriesTitle.empty() && title == cleanName(seriesTitle)) title.clear();
  // A name that this has given keeps its words when the service does not answer: "The Web" stays.
  const bool given = stem.starts_with(start) && !hasSureTag(title);
  if (!fromTable && !given) title = stripReleaseTags(title);
  if (title.empty()) title = "Episode " + twoDigits(mark->episode);
  return start + fileTitle(title, longestMediaName - start.size());
}

}  // namespace tavek

#include "scan/replies.h"

#include <algorithm>
#include <charconv>
#include <functional>

#include "base/text.h"
#include "scan/reply_text.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;
using Members = std::vector<JsonMember>;

constexpr std::size_t npos = std::string_view::npos;
/// More than any service gives in one list.
constexpr std::size_t mostEntries = 2000;

bool isPlainLetter(char c) {
  return isAsciiDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// For what goes into an address or a header.
bool isPrintable(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c > ' ' && c < 0x7F; });
}

std::optional<std::int32_t> positive(std::optional<std::int32_t> number) {
  return number && *number > 0 ? number : std::nullopt;
}

std::optional<std::string> pathMember(const Members& members, std::string_view key) {
  const auto path = stringMember(members, key);
  return path ? imagePath(*path) : std::nullopt;
}

/// The year that a date begins with.
std::optional<std::int32_t> yearOf(std::string_view date) {
  constexpr std::size_t length = 4;
  const std::string_view digits = date.substr(0, length);
  if (digits.size() < length || !std::ranges::all_of(digits, isAsciiDigit)) return {};
  std::int32_t year = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), year);
  return year;
}

MovieCandidate candidateOf(const Members& members, SearchKind kind) {
  const bool film = kind == SearchKind::Film;
  const auto date = stringMember(members, film ? "release_date" : "first_air_date");
  return {positive(numberMember(members, "id")), stringMember(members, film ? "title" : "name"),
          yearOf(date.value_or("")), pathMember(members, "poster_path"),
          pathMember(members, "backdrop_path")};
}

/// The digits from the place on; empty for fewer than an id has.
std::string_view idAt(std::string_view text, std::size_t at) {
  constexpr std::size_t fewest = 3;
  std::size_t end = at;
  while (end < text.size() && isAsciiDigit(text[end])) ++end;
  return end - at < fewest ? std::string_view() : text.substr(at, end - at);
}

/// The first digits behind the word, if they are long enough; else those behind the word's next place.
std::string_view idBehindWord(std::string_view lower, std::string_view word) {
  for (std::size_t at = lower.find(word); at != npos; at = lower.find(word, at)) {
    at = lower.find_first_of("0123456789", at + word.size());
    if (at == npos) break;
    if (const auto id = idAt(lower, at); !id.empty()) return id;
  }
  return {};
}

/// Digits with nothing but white space up to both tags.
std::string_view idBetween(std::string_view lower, std::string_view open, std::string_view close) {
  constexpr auto space = " \t\n\v\f\r"sv;
  for (std::size_t at = lower.find(open); at != npos; at = lower.find(open, at)) {
    at = std::min(lower.find_first_not_of(space, at + open.size()), lower.size());
    const auto id = idAt(lower, at);
    const std::size_t end = std::min(lower.find_first_not_of(space, at + id.size()), lower.size());
    if (!id.empty() && lower.substr(end).starts_with(close)) return id;
  }
  return {};
}

/// Zeros at the start say nothing.
std::string shownNumber(std::string_view digits) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  return std::string(digits);
}

/// The address in an entry of a list of art, if it is English and ends so.
std::optional<std::string> artUrl(const Members& members, std::string_view suffix) {
  auto url = stringMember(members, "url");
  if (!url || !isPrintable(*url) || stringMember(members, "lang") != "en") return {};
  return toLower(*url).ends_with(toLower(suffix)) ? url : std::nullopt;
}

bool isOfSeason(const Members& members, std::int32_t season) {
  const auto text = stringMember(members, "season");
  if (!text) return numberMember(members, "season") == season;
  return shownNumber(trim(*text)) == std::to_string(season);
}

std::optional<std::string> firstArt(const std::string& body, std::string_view key, std::string_view suffix,
                                    const std::function<bool(const Members&)>& fits) {
  for (const std::string& object : listObjects(body, key, mostEntries)) {
    const Members members = readMembers(object);
    auto url = artUrl(members, suffix);
    if (url && fits(members)) return url;
  }
  return {};
}

template <typename Read>
auto firstOf(Read read, const Members& members, std::initializer_list<std::string_view> keys)
    -> decltype(read(members, std::string_view())) {
  for (const std::string_view key : keys) {
    if (auto value = read(members, key)) return value;
  }
  return {};
}

/// The last of the title's keys that holds something, in the order of the entry.
std::string episodeTitle(const Members& members) {
  std::string title;
  for (const JsonMember& member : members) {
    if (member.key != "name" && member.key != "episodeName") continue;
    std::size_t start = 0;
    if (auto text = parseString(member.value, start); text && !text->empty()) title = std::move(*text);
  }
  return title;
}

/// The number behind "next", be it bare or in a link.
std::optional<std::int32_t> nextPage(const std::string& body) {
  const std::string links = readObject(body, "links").value_or(body);
  const std::size_t at = findValue(links, "next").value_or(links.size());
  std::string_view value = std::string_view(links).substr(at);
  if (value.starts_with('"')) {
    value = value.substr(0, value.find('"', 1));
    constexpr auto argument = "page="sv;
    const std::size_t page = value.rfind(argument);
    if (page == npos) return {};
    value.remove_prefix(page + argument.size());
  }
  std::int32_t number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

}  // namespace

std::vector<MovieCandidate> readCandidates(const std::string& body, SearchKind kind) {
  std::vector<MovieCandidate> candidates;
  for (const std::string& object : listObjects(body, "results", mostEntries)) {
    MovieCandidate candidate = candidateOf(readMembers(object), kind);
    if (candidate.id || candidate.title || candidate.year) candidates.push_back(std::move(candidate));
  }
  return candidates;
}

MovieCandidate readDetails(const std::string& body) {
  return candidateOf(readMembers(body), SearchKind::Film);
}

MovieCandidate chooseCandidate(const std::vector<MovieCandidate>& candidates,
                               std::optional<std::int32_t> year) {
  if (candidates.empty()) return {};
  const auto same = std::ranges::find(candidates, year, &MovieCandidate::year);
  return year && same != candidates.end() ? *same : candidates.front();
}

std::optional<std::string> imagePath(std::string_view path) {
  const auto allowed = [](char c) { return isPlainLetter(c) || "._/-"sv.find(c) != npos; };
  constexpr std::size_t longest = 200;
  if (!path.starts_with('/') || path.size() < 2 || path.size() > longest) return {};
  if (!std::ranges::all_of(path, allowed) || path.find("..") != npos) return {};
  return std::string(path);
}

std::optional<std::string> firstLogo(const std::string& body) {
  for (const std::string& object : listObjects(body, "logos", mostEntries)) {
    auto path = pathMember(readMembers(object), "file_path");
    if (path && !toLower(*path).ends_with(".svg")) return path;
  }
  return {};
}

FilmIds readIds(const std::string& metadata) {
  return {positive(numberMember(readMembers(metadata), "id")), readImdbId(metadata)};
}

std::optional<std::string> readImdbId(const std::string& body) {
  constexpr std::size_t longest = 20;
  auto id = stringMember(readMembers(body), "imdb_id");
  const bool fits = id && !id->empty() && id->size() <= longest && std::ranges::all_of(*id, isPlainLetter);
  return fits ? id : std::nullopt;
}

std::optional<std::int32_t> readTvdbNumber(const std::string& body) {
  return positive(numberMember(readMembers(body), "tvdb_id"));
}

std::optional<std::string> readTvdbId(std::string_view text) {
  constexpr std::size_t longest = 18;
  const std::string lower = toLower(trim(text));
  std::string id;
  if (std::ranges::all_of(lower, isAsciiDigit)) {
    id = lower;
  } else {
    // All other forms of the name hold its word, with no digit up to the number.
    id = idBehindWord(lower, "tvdb");
    if (id.empty()) id = idBetween(lower, "<id>", "</id>");
  }
  return !id.empty() && id.size() <= longest ? std::optional(id) : std::nullopt;
}

std::optional<std::string> readSeriesName(const std::string& body) {
  const std::string name = trim(readString(body, "name").value_or(""));
  return !name.empty() ? std::optional(name) : std::nullopt;
}

std::optional<std::string> pickArt(const std::string& body, std::string_view key, std::string_view suffix) {
  return firstArt(body, key, suffix, [](const Members&) { return true; });
}

std::optional<std::string> pickSeasonArt(const std::string& body, std::string_view key,
                                         std::string_view suffix, std::int32_t season) {
  return firstArt(body, key, suffix, [&](const Members& members) { return isOfSeason(members, season); });
}

std::optional<std::string> readToken(const std::string& body) {
  auto token = readString(body, "token");
  return token && isPrintable(*token) ? token : std::nullopt;
}

std::size_t EpisodeHash::operator()(const SeasonAndEpisode& pair) const {
  constexpr std::uint64_t factor = 1315423911;
  return static_cast<std::uint64_t>(pair.second) + static_cast<std::uint64_t>(pair.first) * factor;
}

EpisodePage readEpisodePage(const std::string& body, std::int32_t page) {
  EpisodePage result;
  const std::string_view key = hasList(body, "episodes") ? "episodes" : "data";
  for (const std::string& object : listObjects(body, key, mostEntries)) {
    const Members members = readMembers(object);
    const auto season = firstOf(numberMember, members, {"seasonNumber", "season"});
    const auto episode = firstOf(numberMember, members, {"number", "episodeNumber"});
    std::string title = episodeTitle(members);
    if (season && episode && !title.empty()) result.entries[{*season, *episode}] = std::move(title);
  }
  const auto next = nextPage(body);
  if (next && *next > page) result.next = next;
  return result;
}

}  // namespace tavek

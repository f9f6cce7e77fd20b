#include "scan/replies.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/text.h"
#include "state/json_read.h"

namespace tavek {
namespace {

constexpr std::size_t mostItems = 10'000;

/// An object of a text, by its own members and not those of objects within.
class Object {
 public:
  explicit Object(const std::string& text) : members_(readMembers(text)) {}

  const std::string* value(std::string_view key) const {
    const auto found = std::ranges::find(members_, key, &JsonMember::key);
    return found != members_.end() ? &found->value : nullptr;
  }
  const std::vector<JsonMember>& members() const { return members_; }

 private:
  std::vector<JsonMember> members_;
};

std::optional<std::string> stringOf(const std::string* value) {
  std::size_t start = 0;
  return value != nullptr ? parseString(*value, start) : std::nullopt;
}

/// A bare number or one in quotes.
std::optional<std::int32_t> numberOf(const std::string* value) {
  if (value == nullptr) return {};
  const std::string text = stringOf(value).value_or(*value);
  std::int32_t number = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

std::optional<std::int32_t> idOf(const std::string* value) {
  const auto number = numberOf(value);
  return number && *number > 0 ? number : std::nullopt;
}

/// The objects of an array.
std::vector<std::string> objectsOf(const std::string* value) {
  std::vector<std::string> objects;
  if (value == nullptr || !value->starts_with('[')) return objects;
  std::size_t at = 1;
  while (objects.size() < mostItems && (at = value->find('{', at)) != std::string::npos) {
    const auto close = matchBrace(*value, at);
    if (!close) break;
    objects.push_back(value->substr(at, *close - at + 1));
    at = *close + 1;
  }
  return objects;
}

/// Only what cannot lead anywhere else than to the image host.
std::string imagePathOf(const std::string* value) {
  std::string path = stringOf(value).value_or("");
  const auto plain = [](char c) {
    return isAsciiDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           std::string_view("._/-").find(c) != std::string_view::npos;
  };
  const bool good = path.size() > 1 && path.size() < 256 && path.starts_with('/') &&
                    !path.starts_with("//") && std::ranges::all_of(path, plain) &&
                    path.find("..") == std::string::npos;
  return good ? path : "";
}

/// The year that a date begins with.
std::optional<std::int32_t> yearOf(const std::string* date) {
  const std::string text = stringOf(date).value_or("").substr(0, 4);
  if (text.size() < 4 || !std::ranges::all_of(text, isAsciiDigit)) return {};
  return numberOf(&text);
}

MovieCandidate candidateOf(const Object& object, SearchKind kind) {
  const bool film = kind == SearchKind::Film;
  MovieCandidate candidate{.id = idOf(object.value("id")),
                           .title = stringOf(object.value(film ? "title" : "name")),
                           .year = yearOf(object.value(film ? "release_date" : "first_air_date")),
                           .posterPath = imagePathOf(object.value("poster_path")),
                           .backdropPath = imagePathOf(object.value("backdrop_path"))};
  if (candidate.title && trim(*candidate.title).empty()) candidate.title.reset();
  return candidate;
}

bool endsWith(const std::string& text, std::string_view ending) {
  return toLower(text).ends_with(ending);
}

/// The first picture of a list that fits.
template <typename Fits>
std::optional<std::string> firstArt(const std::string& body, std::string_view list, std::string_view ending,
                                    Fits fits) {
  for (const std::string& text : objectsOf(Object(body).value(list))) {
    const Object art(text);
    const std::string url = stringOf(art.value("url")).value_or("");
    if (!url.empty() && endsWith(url, ending) && stringOf(art.value("lang")) == "en" && fits(art)) return url;
  }
  return {};
}

/// At least three digits, wherever the first such run stands behind a place with nothing but other bytes.
std::string digitsBehind(std::string_view text, std::size_t at) {
  while (at < text.size() && !isAsciiDigit(text[at])) ++at;
  std::size_t end = at;
  while (end < text.size() && isAsciiDigit(text[end])) ++end;
  return end - at >= 3 ? std::string(text.substr(at, end - at)) : "";
}

/// The digits between two marks of a note.
std::string digitsWithin(const std::string& text, const std::string& tag) {
  for (std::size_t at = 0; (at = text.find("<" + tag + ">", at)) != std::string::npos; ++at) {
    const std::size_t from = at + tag.size() + 2;
    const std::size_t end = text.find("</" + tag + ">", from);
    if (end == std::string::npos) break;
    const std::string inside = trim(std::string_view(text).substr(from, end - from));
    if (inside.size() >= 3 && std::ranges::all_of(inside, isAsciiDigit)) return inside;
  }
  return {};
}

/// A link names the page as its "page=".
std::optional<std::int32_t> pageOf(const std::string* next) {
  const auto link = stringOf(next);
  if (!link) return numberOf(next);
  const std::size_t at = link->find("page=");
  const std::string number = at != std::string::npos ? link->substr(at + 5) : *link;
  return numberOf(&number);
}

/// Of several keys the last one in the text.
const std::string* lastOf(const Object& object, std::string_view first, std::string_view second) {
  const std::string* found = nullptr;
  for (const JsonMember& member : object.members()) {
    const bool wanted = member.key == first || member.key == second;
    if (wanted && member.value != "null") found = &member.value;
  }
  return found;
}

}  // namespace

std::vector<MovieCandidate> readCandidates(const std::string& body, SearchKind kind) {
  std::vector<MovieCandidate> candidates;
  for (const std::string& text : objectsOf(Object(body).value("results"))) {
    MovieCandidate candidate = candidateOf(Object(text), kind);
    if (candidate.id || candidate.title || candidate.year) candidates.push_back(std::move(candidate));
  }
  return candidates;
}

std::optional<MovieCandidate> chooseCandidate(const std::vector<MovieCandidate>& candidates,
                                              std::optional<std::int32_t> year) {
  if (candidates.empty()) return {};
  const auto ofYear = std::ranges::find(candidates, year, &MovieCandidate::year);
  return year && ofYear != candidates.end() ? *ofYear : candidates.front();
}

MovieCandidate readDetails(const std::string& body) {
  return candidateOf(Object(body), SearchKind::Film);
}

FilmIds readIds(const std::string& details) {
  const Object film(details);
  FilmIds ids{.tmdb = idOf(film.value("id")), .imdb = stringOf(film.value("imdb_id")).value_or("")};
  const bool good = ids.imdb.starts_with("tt") && ids.imdb.size() > 2 &&
                    std::ranges::all_of(std::string_view(ids.imdb).substr(2), isAsciiDigit);
  if (!good) ids.imdb.clear();
  return ids;
}

std::optional<std::string> firstLogo(const std::string& images) {
  for (const std::string& text : objectsOf(Object(images).value("logos"))) {
    std::string path = imagePathOf(Object(text).value("file_path"));
    if (endsWith(path, ".png")) return path;
  }
  return {};
}

std::optional<std::int32_t> readTvdbNumber(const std::string& ids) {
  return idOf(Object(ids).value("tvdb_id"));
}

std::optional<std::string> readTvdbId(std::string_view text) {
  const std::string whole = toLower(trim(text));
  if (!whole.empty() && std::ranges::all_of(whole, isAsciiDigit)) return whole;
  std::string id;
  for (std::size_t at = 0; id.empty() && (at = whole.find("tvdb", at)) != std::string::npos; ++at)
    id = digitsBehind(whole, at + 4);
  if (id.empty()) id = digitsWithin(whole, "id");
  return id.empty() ? std::nullopt : std::optional(id);
}

std::optional<std::string> readSeriesName(const std::string& body) {
  return stringOf(Object(body).value("name"));
}

std::optional<std::string> pickArt(const std::string& body, std::string_view list, std::string_view ending) {
  return firstArt(body, list, ending, [](const Object&) { return true; });
}

std::optional<std::string> pickSeasonArt(const std::string& body, std::string_view list,
                                         std::string_view ending, std::int32_t season) {
  return firstArt(body, list, ending, [&](const Object& art) {
    const std::string* value = art.value("season");
    const std::string text = value != nullptr ? trim(stringOf(value).value_or(*value)) : "";
    return !text.empty() && std::ranges::all_of(text, isAsciiDigit) && numberOf(&text) == season;
  });
}

EpisodePage readEpisodePage(const std::string& body) {
  EpisodePage page;
  const Object answer(body);
  // The list lies in the data, or is them.
  const std::string* data = answer.value("data");
  const Object inner(data != nullptr ? *data : "");
  const std::string* list = answer.value("episodes");
  if (list == nullptr) list = inner.value("episodes");
  if (list == nullptr) list = data;
  for (const std::string& text : objectsOf(list)) {
    const Object episode(text);
    const auto season = numberOf(lastOf(episode, "seasonNumber", "season"));
    const auto number = numberOf(lastOf(episode, "number", "episodeNumber"));
    std::string title = stringOf(lastOf(episode, "name", "episodeName")).value_or("");
    if (season && number && !title.empty())
      page.titles.insert_or_assign({*season, *number}, std::move(title));
  }
  const std::string* links = answer.value("links");
  const std::string* next = links != nullptr ? nullptr : answer.value("next");
  const Object around(links != nullptr ? *links : "");
  if (links != nullptr) next = around.value("next");
  page.next = pageOf(next);
  if (page.next && *page.next < 0) page.next.reset();
  return page;
}

std::optional<std::string> readToken(const std::string& body) {
  const Object answer(body);
  auto token = stringOf(answer.value("token"));
  const std::string* data = answer.value("data");
  if (!token && data != nullptr) token = stringOf(Object(*data).value("token"));
  // It becomes part of a head.
  const bool good =
      token && !token->empty() && std::ranges::all_of(*token, [](char c) { return c > ' ' && c < 0x7f; });
  return good ? token : std::nullopt;
}

}  // namespace tavek

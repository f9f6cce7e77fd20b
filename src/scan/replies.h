#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// What the replies of the services say. They may hold anything: what is not as expected is left out, lists
/// are read up to a bound, and what goes into an address or a header holds nothing that it must not.
namespace tavek {

/// A film or a series that a search has found. Only ids above 0, and paths as imagePath lets through.
struct MovieCandidate {
  std::optional<std::int32_t> id;
  std::optional<std::string> title;
  std::optional<std::int32_t> year;
  std::optional<std::string> posterPath;
  std::optional<std::string> backdropPath;
  bool operator==(const MovieCandidate&) const = default;
};
enum class SearchKind { Film, Series };
/// All results in the order of the reply.
std::vector<MovieCandidate> readCandidates(const std::string& body, SearchKind kind);
/// The film of a reply with its details.
MovieCandidate readDetails(const std::string& body);
/// The first of this year, else the first of all; an empty one if there is none.
MovieCandidate chooseCandidate(const std::vector<MovieCandidate>& candidates,
                               std::optional<std::int32_t> year);

/// A picture's path as it may stand in an address: from a slash on, of plain letters, and never upwards.
std::optional<std::string> imagePath(std::string_view path);
/// The path of the first logo that is a picture of pixels.
std::optional<std::string> firstLogo(const std::string& body);

struct FilmIds {
  std::optional<std::int32_t> tmdbId;
  std::optional<std::string> imdbId;
  bool operator==(const FilmIds&) const = default;
};
/// The film's own ids in its details, not those of the things that belong to it.
FilmIds readIds(const std::string& metadata);
std::optional<std::string> readImdbId(const std::string& body);
/// From a reply with the ids of a series elsewhere.
std::optional<std::int32_t> readTvdbNumber(const std::string& body);
/// From a file that holds the number, or some text with it.
std::optional<std::string> readTvdbId(std::string_view text);

/// The name of a series in a list of its art.
std::optional<std::string> readSeriesName(const std::string& body);
/// The address of the first English picture or sound in a list, if its name ends so.
std::optional<std::string> pickArt(const std::string& body, std::string_view key, std::string_view suffix);
/// The same among those of one season.
std::optional<std::string> pickSeasonArt(const std::string& body, std::string_view key,
                                         std::string_view suffix, std::int32_t season);

/// What a log-in gives.
std::optional<std::string> readToken(const std::string& body);

using SeasonAndEpisode = std::pair<std::int32_t, std::int32_t>;
struct EpisodeHash {
  std::size_t operator()(const SeasonAndEpisode& pair) const;
};
/// The titles of a series.
using EpisodeTable = std::unordered_map<SeasonAndEpisode, std::string, EpisodeHash>;

/// How many pages of episodes are asked for at most.
inline constexpr std::int32_t mostEpisodePages = 40;
struct EpisodePage {
  EpisodeTable entries;
  std::optional<std::int32_t> next;  ///< the number of the next page, always above that of this one
};
EpisodePage readEpisodePage(const std::string& body, std::int32_t page);

}  // namespace tavek

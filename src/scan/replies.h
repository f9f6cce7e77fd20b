#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// What the web services answer. Nobody vouches for it: any bytes may be passed, and what is not there or no
/// good is left out. Nothing recurses, and all takes a time that grows with the text alone.
namespace tavek {

/// A film or a series of a search, or of a film's details.
struct MovieCandidate {
  std::optional<std::int32_t> id;  ///< above 0
  std::optional<std::string> title;
  std::optional<std::int32_t> year;
  std::string posterPath, backdropPath;  ///< empty, or safe to be put behind the base of the images
};
enum class SearchKind { Film, Series };
/// In the order of the answer; without those that tell neither id, title nor year.
std::vector<MovieCandidate> readCandidates(const std::string& body, SearchKind kind);
/// The first of the year; else the first.
std::optional<MovieCandidate> chooseCandidate(const std::vector<MovieCandidate>& candidates,
                                              std::optional<std::int32_t> year);
/// Of the body of a film's details.
MovieCandidate readDetails(const std::string& body);

struct FilmIds {
  std::optional<std::int32_t> tmdb;
  std::string imdb;  ///< "tt0078748", or empty
};
FilmIds readIds(const std::string& details);
/// The path of the first logo that is a PNG.
std::optional<std::string> firstLogo(const std::string& images);
/// The series' number at the episode database, of its ids elsewhere.
std::optional<std::int32_t> readTvdbNumber(const std::string& ids);

/// The number in a file that a user or another program wrote: a bare one, or what stands behind the words
/// that are customary.
std::optional<std::string> readTvdbId(std::string_view text);
/// How the art service calls a series.
std::optional<std::string> readSeriesName(const std::string& body);
/// The address of the first picture in English of a list; its end has to be this, in any case.
std::optional<std::string> pickArt(const std::string& body, std::string_view list, std::string_view ending);
std::optional<std::string> pickSeasonArt(const std::string& body, std::string_view list,
                                         std::string_view ending, std::int32_t season);

/// The titles of episodes by season and number.
struct EpisodeHash {
  std::size_t operator()(const std::pair<std::int32_t, std::int32_t>& episode) const {
    return static_cast<std::size_t>(static_cast<std::uint64_t>(episode.second) +
                                    static_cast<std::uint64_t>(episode.first) * 1315423911U);
  }
};
using EpisodeTable = std::unordered_map<std::pair<std::int32_t, std::int32_t>, std::string, EpisodeHash>;
struct EpisodePage {
  EpisodeTable titles;
  std::optional<std::int32_t> next;  ///< the page that follows
};
EpisodePage readEpisodePage(const std::string& body);
/// Of the answer to a login.
std::optional<std::string> readToken(const std::string& body);

}  // namespace tavek

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "scan/http.h"
#include "scan/replies.h"
#include "scan/tidy.h"
#include "scan/tmdb_client.h"
#include "scan/tvdb_client.h"

namespace tavek {

/// One walk over the rooms of series: each series gets its number at the episode database, its episodes their
/// names where the room is tidied, and what is missing of its art and of its seasons' posters. What is
/// complete costs no request. Of a worker's thread; ends early, between two items, when `tidy.stop` is set.
class SeriesScan {
 public:
  SeriesScan(std::string fanartKey, std::string fanartClientKey, TmdbClient& tmdb, TvdbClient& tvdb,
             const TidyContext& tidy)
      : fanartKey_(std::move(fanartKey)),
        fanartClientKey_(std::move(fanartClientKey)),
        tmdb_(tmdb),
        tvdb_(tvdb),
        tidy_(tidy),
        fanart_(fanartService(), tidy.stop) {}

  /// The library, or one room.
  void run(const std::filesystem::path& root);
  /// The art service gave way to no connection.
  bool netGone() const { return fanart_.netGone(); }

 private:
  /// The videos of one series folder, in the order of the walk.
  struct SeriesGroup {
    std::filesystem::path room, folder;
    std::vector<std::filesystem::path> videos;
  };

  std::vector<SeriesGroup> groupsOf(const std::filesystem::path& room) const;
  void scanSeries(const SeriesGroup& group);
  bool complete(const SeriesGroup& group) const;
  std::string tvdbIdOf(const SeriesGroup& group, const std::string& name);
  std::string artOf(const std::string& tvdbId);
  void renameSeriesEpisodes(const SeriesGroup& group, const std::string& seriesTitle,
                            const EpisodeTable* table);
  void renameEpisode(const std::filesystem::path& room, const std::filesystem::path& video,
                     const std::string& seriesTitle, const EpisodeTable* table);
  void fetchArt(const SeriesGroup& group, const std::string& art);
  void fetchSeasonPosters(const SeriesGroup& group, const std::string& art);
  bool downloadArt(const std::string& url, const std::filesystem::path& path, FileKind kind,
                   const std::filesystem::path& room);

  const std::string fanartKey_;
  const std::string fanartClientKey_;
  TmdbClient& tmdb_;
  TvdbClient& tvdb_;
  const TidyContext& tidy_;
  HttpSession fanart_;
  bool changed_ = false;
};

}  // namespace tavek

#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/background_job.h"
#include "display/music/music_layout.h"
#include "display/toolkit/frame_context.h"
#include "library/album.h"

namespace tavek {

/// A track as the screen tells of it: its lines of text, and the column of its album's tracks. What the files
/// say is found out in the background: names first, then the tags. Main thread only.
class TrackPage {
 public:
  /// Once per frame. An empty path shows nothing.
  void follow(const std::filesystem::path& track);
  const std::filesystem::path& track() const { return track_; }
  const std::optional<TrackInfo>& info() const { return info_; }

  struct Place {
    int blockTop(SDL_Point window, int blockHeight) const {
      return aboveEdge ? blockTopAbove(window, edge, blockHeight) : nowPlayingTop(window, blockHeight);
    }
    bool aboveEdge = false;
    int edge = 0;  ///< on which the column stands
  };
  /// The row of `playing` is lit, if the album holds it.
  void draw(const FrameContext& frame, const std::filesystem::path& playing, const Place& place);

 private:
  /// What the job has found: the track's tags, or the album as far as it is known.
  struct News {
    std::optional<TrackInfo> info;
    std::optional<std::vector<AlbumTrack>> tracks;
  };
  /// The texts as they were drawn last, cut to their places.
  struct Fitted {
    SDL_Point window{};
    std::size_t first = 0;
    TrackLines lines;
    std::vector<std::string> rows;
  };
  static void find(const std::filesystem::path& track, JobSide<News>& side);
  void take(News news);
  void fit(const FrameContext& frame, const ColumnLayout& column);
  void drawLines(const FrameContext& frame, const Place& place) const;
  void drawColumn(const FrameContext& frame, const ColumnLayout& column) const;
  void lookUp(const std::filesystem::path& playing);

  std::filesystem::path track_;
  std::optional<TrackInfo> info_;
  TrackLines lines_;
  std::vector<AlbumTrack> tracks_;
  std::filesystem::path lit_;            ///< the file that lookUp() has looked for
  std::optional<std::size_t> litTrack_;  ///< and where it stands
  Fitted fitted_;
  BackgroundJob<News> job_;
};

}  // namespace tavek

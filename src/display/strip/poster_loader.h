#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <unordered_map>
#include <variant>

#include "base/background_job.h"
#include "base/file_state.h"
#include "display/toolkit/sdl_handles.h"
#include "library/poster_listing.h"

namespace tavek {

/// Tall enough for the largest place that a poster is drawn at; no tile in memory is taller.
inline constexpr int tallestPoster = 300;

/// A tile on its way from the loader to the main thread.
struct PendingPoster {
  ListedPoster poster;
  FileState image;     ///< as it was read
  SurfacePtr surface;  ///< null if the tile that is there already still shows it
};

/// The pictures that are on tiles already, by the tiles' paths.
using KnownImages = std::unordered_map<std::string, FileState>;

/// What a folder's loader has decoded and nobody has taken.
struct PosterBacklog {
  std::deque<PendingPoster> pendingPosters;
  std::size_t posterTotal = 0;  ///< how many tiles come in all; 0 until the folder is listed
};

/// Lists one folder and decodes its tiles in the background, at most one at a time. It touches neither the
/// renderer nor anything that the screen draws with. Main thread only.
class PosterLoader {
 public:
  /// Leaves the folder before. A folder that is not there, or holds no media, comes out empty.
  void start(const std::filesystem::path& folder);
  /// The same for a folder whose tiles are on the screen: only what is new or has changed is decoded.
  void startAgain(const std::filesystem::path& folder, KnownImages known);
  /// Hands over what is left, without waiting for the tile that is being made.
  PosterBacklog stop();
  /// Goes on with what an earlier stop() gave.
  void restore(PosterBacklog backlog);
  /// It is at work on this folder.
  bool loading(const std::filesystem::path& folder) const { return job_.running() && folder == folder_; }

  std::optional<PendingPoster> takePending();
  std::size_t pendingCount();
  /// Stays valid until the next call.
  const std::deque<PendingPoster>& pending();
  std::size_t posterTotal();
  /// Nothing more comes.
  bool finished() const { return !job_.running(); }

 private:
  /// The number of tiles, or one of them.
  using Message = std::variant<std::size_t, PendingPoster>;
  static void loadPosters(const std::filesystem::path& folder, const KnownImages& known,
                          JobSide<Message>& side);
  void collect();

  std::filesystem::path folder_;
  BackgroundJob<Message> job_;
  PosterBacklog backlog_;
};

}  // namespace tavek

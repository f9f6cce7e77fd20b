#pragma once

#include <cstddef>
#include <deque>
#include <filesystem>
#include <mutex>
#include <optional>
#include <thread>

#include "base/process_flags.h"
#include "display/toolkit/sdl_handles.h"
#include "library/poster_listing.h"

namespace tavek {

/// Tall enough for the largest place that a poster is drawn at; no tile in memory is taller.
inline constexpr int tallestPoster = 300;

/// A tile on its way from the loader to the main thread.
struct PendingPoster {
  ListedPoster poster;
  SurfacePtr surface;
};

/// What a folder's loader has decoded and nobody has taken.
struct PosterBacklog {
  std::deque<PendingPoster> pendingPosters;
  std::size_t posterTotal = 0;  ///< how many tiles come in all; 0 until the folder is listed
};

/// Lists one folder and decodes its tiles on a thread of its own, at most one at a time. The main thread
/// starts and stops it and takes what is done. posterLock_ guards the queue and the count; the loader itself
/// touches neither the renderer nor anything that the screen draws with.
class PosterLoader {
 public:
  PosterLoader() = default;
  ~PosterLoader() { stop(); }
  PosterLoader(const PosterLoader&) = delete;
  PosterLoader& operator=(const PosterLoader&) = delete;

  /// False if there is no media in the folder, or no folder: nothing is loaded then. The loader must be
  /// stopped.
  bool start(const std::filesystem::path& folder);
  /// Waits for the tile that is being made, which may take a run of ffmpeg, and hands over what is left.
  PosterBacklog stop();
  /// Goes on with what an earlier stop() gave.
  void restore(PosterBacklog backlog);
  /// The thread is at work on this folder.
  bool loading(const std::filesystem::path& folder) const { return running_ && folder == folder_; }

  std::optional<PendingPoster> takePending();
  std::size_t pendingCount() const;
  std::size_t posterTotal() const;
  /// The thread has ended.
  bool finished() const { return !running_; }

 private:
  void run();
  void loadPosters();
  SurfacePtr makeTile(ListingKind kind, const ListedPoster& poster);

  std::filesystem::path folder_;
  FontPtr font_;  ///< for names on placeholders; fonts may not be shared between threads
  Flag running_;
  Flag stop_;
  std::thread thread_;

  mutable std::mutex posterLock_;
  PosterBacklog backlog_;
};

}  // namespace tavek

#include "display/poster_loader.h"

#include <iomanip>
#include <iostream>
#include <utility>

#include "base/process_flags.h"
#include "display/image_file.h"
#include "display/poster_tile.h"
#include "display/toolkit/fonts.h"
#include "library/episode_still.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/usable_file.h"
#include "state/json_write.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// To be read from the sofa when the tile is drawn at half its height.
constexpr int nameSize = 40;

bool hasMedia(const fs::path& folder) {
  bool found = false;
  walkBelow(folder, [&](const fs::recursive_directory_iterator& entry) {
    found = (isVideoFile(entry->path()) || isAudioFile(entry->path())) && isRegularFile(*entry);
    return !found;
  });
  return found;
}

SurfacePtr loadTile(const fs::path& image) {
  SurfacePtr tile = loadImage(image);
  if (!tile && debugEnabled) {
    std::cerr << "[POSTER] load failed: " << std::quoted(image.string()) << " (" << SDL_GetError() << ")"
              << std::endl;
  }
  return tile;
}

}  // namespace

bool PosterLoader::start(const fs::path& folder) {
  std::error_code error;
  if (!fs::exists(folder, error) || !hasMedia(folder)) return false;
  folder_ = folder.lexically_normal();
  if (!font_) font_ = openRegularFont(nameSize);
  running_ = true;
  stop_ = false;
  thread_ = std::thread([this] { run(); });
  return true;
}

PosterBacklog PosterLoader::stop() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
  const std::lock_guard held(posterLock_);
  return std::exchange(backlog_, {});
}

void PosterLoader::restore(PosterBacklog backlog) {
  const std::lock_guard held(posterLock_);
  backlog_ = std::move(backlog);
}

void PosterLoader::run() {
  try {
    loadPosters();
  } catch (const std::exception&) {
    // The list ends with what it has.
  }
  // SDL keeps its last error for each thread, and looks after its own threads only.
  SDL_TLSCleanup();
  running_ = false;
}

void PosterLoader::loadPosters() {
  PosterListing listing = listPosters(folder_, stop_);
  {
    const std::lock_guard held(posterLock_);
    backlog_.posterTotal = listing.posters.size();
  }
  if (debugEnabled) {
    std::cout << "[POSTER] " << listingNoun(listing.kind) << " found: " << listing.posters.size()
              << " root=" << folder_.string() << std::endl;
  }
  for (ListedPoster& poster : listing.posters) {
    if (stop_) return;
    SurfacePtr tile = fittedToHeight(makeTile(listing.kind, poster), tallestPoster);
    if (!tile) continue;
    const std::lock_guard held(posterLock_);
    backlog_.pendingPosters.push_back({std::move(poster), std::move(tile)});
  }
}

SurfacePtr PosterLoader::makeTile(ListingKind kind, const ListedPoster& poster) {
  if (kind == ListingKind::Seasons) ensureJsonFile(fs::path(poster.path).parent_path() / "playback.json");
  if (kind == ListingKind::Episodes) makeEpisodeThumb(poster.path, poster.image);

  // A folder without a poster is no failure to tell of.
  std::error_code ignored;
  const bool expected = kind == ListingKind::Videos || fs::is_regular_file(poster.image, ignored);
  SurfacePtr tile = expected ? loadTile(poster.image) : nullptr;
  if (kind == ListingKind::Albums) {
    tile = makeAlbumTile(std::move(tile));
  } else if (!tile && kind != ListingKind::Videos) {
    tile = makePlaceholder(poster.label, font_.get());
  }
  if (!tile && kind != ListingKind::Videos && debugEnabled) {
    std::cerr << "[POSTER] placeholder failed: " << poster.label << std::endl;
  }
  return tile;
}

std::optional<PendingPoster> PosterLoader::takePending() {
  const std::lock_guard held(posterLock_);
  if (backlog_.pendingPosters.empty()) return {};
  PendingPoster first = std::move(backlog_.pendingPosters.front());
  backlog_.pendingPosters.pop_front();
  return first;
}

std::size_t PosterLoader::pendingCount() const {
  const std::lock_guard held(posterLock_);
  return backlog_.pendingPosters.size();
}

std::size_t PosterLoader::posterTotal() const {
  const std::lock_guard held(posterLock_);
  return backlog_.posterTotal;
}

}  // namespace tavek

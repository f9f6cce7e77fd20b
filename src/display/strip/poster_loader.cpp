#include "display/strip/poster_loader.h"

#include <iomanip>
#include <iostream>
#include <utility>

#include "base/process_flags.h"
#include "display/strip/poster_tile.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/image_file.h"
#include "library/episode_still.h"
#include "library/file_types.h"
#include "library/media_list.h"
#include "library/media_paths.h"
#include "scan/scan_status.h"
#include "state/json_write.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// To be read from the sofa when the tile is drawn at half its height.
constexpr int nameSize = 40;

SurfacePtr loadTile(const fs::path& image) {
  SurfacePtr tile = loadImage(image);
  if (!tile && debugEnabled) {
    std::cerr << "[POSTER] load failed: " << std::quoted(image.string()) << " (" << SDL_GetError() << ")"
              << std::endl;
  }
  return tile;
}

/// For names on placeholders; fonts may not be shared between threads.
class TileMaker {
 public:
  TileMaker() : font_(openRegularFont(nameSize)) {}

  SurfacePtr make(ListingKind kind, const ListedPoster& poster, const Flag& stop) const {
    if (kind == ListingKind::Seasons) ensureJsonFile(fs::path(poster.path).parent_path() / "playback.json");
    if (kind == ListingKind::Episodes) makeEpisodeThumb(poster.path, poster.image, stop);

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

 private:
  FontPtr font_;
};

constexpr std::string_view waiting = "Waiting for media";

/// An empty room says so to the viewer.
bool tellsOfMedia(const fs::path& folder, const Flag& stop) {
  if (holdsMedia(folder, stop)) return clearScanStatusIf(waiting), true;
  std::error_code ignored;
  if (!stop && fs::exists(folder, ignored)) setScanStatus(waiting);
  return false;
}

std::string loadingLabel(const fs::path& folder, const Flag& stop) {
  switch (classifyFolder(folder, stop)) {
    case MediaKind::Series:
      return "Loading tv series";
    case MediaKind::Videos:
      return "Loading videos";
    case MediaKind::Music:
      return "Loading music";
    case MediaKind::Movies:
      break;
  }
  return roomLabelOf(folder, "movies") == "kids" ? "Loading kids movies" : "Loading adults movies";
}

/// SDL keeps its last error for each thread, and looks after its own threads only.
struct ThreadStorage {
  ThreadStorage() = default;
  ~ThreadStorage() { SDL_TLSCleanup(); }
  ThreadStorage(const ThreadStorage&) = delete;
  ThreadStorage& operator=(const ThreadStorage&) = delete;
};

}  // namespace

void PosterLoader::start(const fs::path& folder) {
  folder_ = folder.lexically_normal();
  backlog_ = {};
  job_.start([folder = folder_](JobSide<Message>& side) {
    if (!tellsOfMedia(folder, side.stop())) return;
    const ScanActivity activity(loadingLabel(folder, side.stop()));
    loadPosters(folder, {}, side);
  });
}

void PosterLoader::startAgain(const fs::path& folder, KnownImages known) {
  folder_ = folder.lexically_normal();
  backlog_ = {};
  job_.start([folder = folder_, known = std::move(known)](JobSide<Message>& side) {
    if (tellsOfMedia(folder, side.stop())) loadPosters(folder, known, side);
  });
}

PosterBacklog PosterLoader::stop() {
  collect();
  job_.leave();
  return std::exchange(backlog_, {});
}

void PosterLoader::restore(PosterBacklog backlog) {
  backlog_ = std::move(backlog);
}

void PosterLoader::loadPosters(const fs::path& folder, const KnownImages& known, JobSide<Message>& side) {
  const ThreadStorage storage;
  PosterListing listing = listPosters(folder, side.stop());
  side.post(listing.posters.size());
  if (debugEnabled) {
    std::cout << "[POSTER] " << listingNoun(listing.kind) << " found: " << listing.posters.size()
              << " root=" << folder.string() << std::endl;
  }
  const TileMaker maker;
  for (ListedPoster& poster : listing.posters) {
    if (side.stop()) return;
    const ListingKind kind = poster.isEpisode ? ListingKind::Episodes : listing.kind;
    FileState image = fileStateOf(poster.image);
    const auto shown = known.find(poster.path);
    if (shown != known.end() && shown->second == image) {
      side.post(PendingPoster{std::move(poster), std::move(image), {}});
      continue;
    }
    SurfacePtr tile = fittedToHeight(maker.make(kind, poster, side.stop()), tallestPoster);
    if (tile) side.post(PendingPoster{std::move(poster), std::move(image), std::move(tile)});
  }
}

void PosterLoader::collect() {
  while (auto message = job_.take()) {
    if (const auto* total = std::get_if<std::size_t>(&*message)) {
      backlog_.posterTotal = *total;
    } else {
      backlog_.pendingPosters.push_back(std::get<PendingPoster>(std::move(*message)));
    }
  }
}

std::optional<PendingPoster> PosterLoader::takePending() {
  collect();
  if (backlog_.pendingPosters.empty()) return {};
  PendingPoster first = std::move(backlog_.pendingPosters.front());
  backlog_.pendingPosters.pop_front();
  return first;
}

const std::deque<PendingPoster>& PosterLoader::pending() {
  collect();
  return backlog_.pendingPosters;
}

std::size_t PosterLoader::pendingCount() {
  collect();
  return backlog_.pendingPosters.size();
}

std::size_t PosterLoader::posterTotal() {
  collect();
  return backlog_.posterTotal;
}

}  // namespace tavek

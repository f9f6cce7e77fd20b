#include "scan/scan_thread.h"

#include <algorithm>
#include <condition_variable>
#include <ctime>
#include <deque>
#include <iostream>
#include <map>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

#include "base/console.h"
#include "base/guarded.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "base/text.h"
#include "library/media_list.h"
#include "library/media_paths.h"
#include "scan/credentials.h"
#include "scan/poster_scanner.h"
#include "scan/scan_schedule.h"
#include "scan/scan_status.h"
#include "scan/tv_art_scanner.h"
#include "scan/web_connection.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

enum class Asked { StartUp, Tmdb, TvArt, Skipped /*what played meanwhile*/ };

struct Request {
  Asked what;
  fs::path folder;
  bool operator==(const Request&) const = default;
};

std::string roomNameOf(const fs::path& folder) {
  return toLower(folder.filename().string());
}

void logTmdb(const std::string& line) {
  if (tmdbConsoleEnabled && !line.empty()) console::logTmdb(line);
}

void logFanart(const std::string& line) {
  if (fanartConsoleEnabled && !line.empty()) console::logFanart(line);
}

}  // namespace

/// What the owner and the thread know; the thread keeps it alive.
struct ScanThread::Shared {
  struct Queue {
    bool started = false;  ///< the scan of the start goes before all others
    std::deque<Request> requests;
  };
  Guarded<Queue> queue;
  std::condition_variable asked;
  Guarded<fs::path> inUse;

  void ask(Request request) {
    auto held = queue.hold();
    const bool first = request.what == Asked::StartUp;
    if (first) held->started = true;
    if (std::ranges::find(held->requests, request) == held->requests.end())
      held->requests.insert(first ? held->requests.begin() : held->requests.end(), std::move(request));
    asked.notify_all();
  }

  /// Waits for one; none when it is to stop.
  std::optional<Request> next(const Flag& stop) {
    auto held = queue.hold();
    while (!stop && (!held->started || held->requests.empty()))
      asked.wait_for(held.lock(), std::chrono::milliseconds(100));
    if (stop) return {};
    Request first = std::move(held->requests.front());
    held->requests.pop_front();
    return first;
  }
};

/// The thread's own part.
class ScanThread::Work {
 public:
  Work(const Stored& stored, ForcedScans forced, Shared& shared, const Flag& stop)
      : stored_(stored), forced_(forced), shared_(shared), stop_(stop) {
    Credentials keys = readCredentials();
    if (keys.tmdbKey.empty() && keys.tmdbToken.empty()) {
      logTmdb("Disabled (credentials not found)");
    } else {
      posters_.emplace(keys.tmdbKey, keys.tmdbToken, mediaRoot());
    }
    if (keys.fanartKey.empty()) {
      logFanart("Disabled (credentials not found)");
    } else {
      tvArt_.emplace(TvArtKeys{keys.fanartKey, keys.fanartClientKey, keys.tmdbKey, keys.tmdbToken,
                               keys.tvdbKey, keys.tvdbPin},
                     mediaRoot());
    }
    if ((posters_ || tvArt_) && !webReady()) std::cerr << "Warning: curl_global_init failed" << std::endl;
  }

  void run() {
    while (const auto request = shared_.next(stop_)) {
      switch (request->what) {
        case Asked::StartUp:
          startUp(request->folder);
          break;
        case Asked::Tmdb:
          scanFilms(request->folder);
          break;
        case Asked::TvArt:
          scanSeries();
          break;
        case Asked::Skipped:
          scanSkipped();
          break;
      }
    }
  }

 private:
  static std::int64_t now() { return static_cast<std::int64_t>(std::time(nullptr)); }

  /// An item that plays is skipped, and so is what it would take along; until it has ended.
  bool busy(const fs::path& path) {
    const fs::path inUse = *shared_.inUse.hold();
    const bool skipped = !inUse.empty() && (inUse == path || isInside(inUse, path));
    if (const auto room = skipped ? roomRootOf(path) : std::nullopt) skipped_.insert(*room);
    return skipped;
  }

  void scanSkipped() {
    for (const fs::path& room : std::exchange(skipped_, {}))
      classifyFolder(room, stop_) == MediaKind::Series ? runSeries() : runFilms(room);
  }

  TidyContext context() {
    return {.stored = stored_,
            .stop = stop_,
            .busy = [this](const fs::path& path) { return busy(path); },
            .scanTime = now(),
            .log = logTmdb};
  }

  void startUp(const fs::path& folder) {
    if (!posters_ && !tvArt_) return;
    if (!holdsMedia(folder, stop_)) {
      if (!stop_) setScanStatus("Waiting for media");
      return;
    }
    clearScanStatusIf("Waiting for media");
    const bool films = classifyFolder(folder, stop_) == MediaKind::Movies;
    const std::string name = roomNameOf(folder);
    if (films && posters_ && isDayOld(stored_.settings.tmdbScanEpoch(), now())) {
      logTmdb("startup scan: running TMDB before loading " + (name.empty() ? "movies" : name));
      runFilms(folder);
    }
    const bool series = classifyFolder(folder, stop_) == MediaKind::Series && name != "kids";
    if (series && tvArt_ && isDayOld(stored_.settings.fanartScanEpoch(), now())) {
      logFanart("startup scan: running FANART before loading tv");
      runSeries();
    }
  }

  void scanFilms(const fs::path& folder) {
    if (!posters_) return;
    const ScanRecord last{stored_.settings.tmdbScanEpoch(), stored_.settings.tmdbScanLabel()};
    const auto scanned = scannedAt_.find(folder);
    const auto scannedAt = scanned != scannedAt_.end() ? std::optional(scanned->second) : std::nullopt;
    const ScanVerdict verdict =
        tmdbScanDue(last, roomNameOf(folder), scannedAt, std::exchange(forced_.tmdb, false), now());
    logTmdb(verdict.line);
    if (verdict.run) runFilms(folder);
  }

  void scanSeries() {
    if (!tvArt_) return;
    const ScanVerdict verdict =
        fanartScanDue({stored_.settings.fanartScanEpoch(), {}}, std::exchange(forced_.fanart, false), now());
    logFanart(verdict.line);
    if (verdict.run) runSeries();
  }

  /// A scan that found no connection has not been.
  void runFilms(const fs::path& folder) {
    const ScanRecord before{stored_.settings.tmdbScanEpoch(), stored_.settings.tmdbScanLabel()};
    stored_.settings.setTmdbScan(now(), roomNameOf(folder));
    scannedAt_[folder] = now();
    if (posters_->scan(folder, context()) != ScanResult::NetGone) return;
    stored_.settings.setTmdbScan(before.at.value_or(0), before.label.value_or(""));
    scannedAt_.erase(folder);
  }

  void runSeries() {
    const auto before = stored_.settings.fanartScanEpoch();
    stored_.settings.setFanartScan(now());
    if (tvArt_->scan(context()) == ScanResult::NetGone) stored_.settings.setFanartScan(before.value_or(0));
  }

  const Stored stored_;
  ForcedScans forced_;
  Shared& shared_;
  const Flag& stop_;
  std::optional<PosterScanner> posters_;
  std::optional<TvArtScanner> tvArt_;
  std::map<fs::path, std::int64_t> scannedAt_;  ///< in this run of the program
  std::set<fs::path> skipped_;                  ///< rooms with something that played
};

ScanThread::ScanThread(const Stored& stored, ForcedScans forced) : shared_(std::make_shared<Shared>()) {
  job_.start([shared = shared_, stored, forced](JobSide<bool>& side) {
    Work(stored, forced, *shared, side.stop()).run();
  });
}

ScanThread::~ScanThread() {
  job_.leave();
  shared_->asked.notify_all();
}

void ScanThread::startUp(const fs::path& folder) {
  shared_->ask({Asked::StartUp, folder});
}

void ScanThread::tmdbScanRequest(const fs::path& root) {
  shared_->ask({Asked::Tmdb, root.lexically_normal()});
}

void ScanThread::tvArtScanRequest(const fs::path& /*root*/) {
  shared_->ask({Asked::TvArt, {}});
}

void ScanThread::setItemInUse(const fs::path& item) {
  std::error_code ignored;
  *shared_->inUse.hold() = item.empty() ? item : fs::absolute(item, ignored).lexically_normal();
  if (item.empty()) shared_->ask({Asked::Skipped, {}});
}

}  // namespace tavek

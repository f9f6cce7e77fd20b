#pragma once

#include <filesystem>
#include <memory>

#include "base/background_job.h"
#include "state/stored.h"

namespace tavek {

/// Scans that the user asked for on the command line, whenever the last ones were.
struct ForcedScans {
  bool tmdb = false;
  bool fanart = false;
};

/// The one thread that scans, with the user's keys. Requests queue up behind what runs and never wait; the
/// thread decides whether they are due. Without keys it answers none. Main thread only.
class ScanThread {
 public:
  ScanThread(const Stored& stored, ForcedScans forced);
  /// Ends what runs between two items, or within a tenth of a second in a transfer; does not wait for it.
  ~ScanThread();
  ScanThread(const ScanThread&) = delete;
  ScanThread& operator=(const ScanThread&) = delete;

  /// The scan of a start, before all others. It tells the viewer of a room without media.
  void startUp(const std::filesystem::path& folder);
  void tmdbScanRequest(const std::filesystem::path& root);
  void tvArtScanRequest(const std::filesystem::path& root);
  /// The file that plays is left where it is; an empty path for none.
  void setItemInUse(const std::filesystem::path& item);

 private:
  struct Shared;
  class Work;

  const std::shared_ptr<Shared> shared_;
  BackgroundJob<bool> job_;
};

}  // namespace tavek

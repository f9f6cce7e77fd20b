#pragma once

#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <unordered_map>

#include <SDL.h>

#include "library/media_kind.h"

namespace tavek {

/// Who fetches art for a room.
enum class ArtService { None, Tmdb, TvArt };
ArtService artServiceOf(const std::filesystem::path& room, MediaKind kind);

/// Whoever answers takes the room; one that is empty is passed over. Called on the main thread.
struct ScanRequests {
  std::function<void(const std::filesystem::path&)> tmdbScanRequest;
  std::function<void(const std::filesystem::path&)> tvArtScanRequest;
};

/// For which rooms a scan is due: once in the program's life, and once an hour while nobody uses it.
class IdleScans {
 public:
  /// True for a room that was not asked about before.
  bool requestScanOnce(const std::filesystem::path& room);
  /// True when the last time was an hour ago.
  bool scanWhileIdle(const std::filesystem::path& room, Uint64 nowMs);

 private:
  std::set<std::string> scanRequested_;
  std::unordered_map<std::string, Uint64> idleScanAt_;
};

/// Asks the service that the room's kind has.
void requestScan(const ScanRequests& requests, const std::filesystem::path& room, MediaKind kind);
/// Asks for all that is due for a room.
void requestScans(IdleScans& scans, const ScanRequests& requests, const std::filesystem::path& room,
                  MediaKind kind, Uint64 nowMs);

}  // namespace tavek

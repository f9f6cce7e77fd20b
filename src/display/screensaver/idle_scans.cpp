#include "display/screensaver/idle_scans.h"

#include "base/text.h"

namespace tavek {
namespace {

constexpr Uint64 hourMs = 3'600'000;

std::string keyOf(const std::filesystem::path& room) {
  return room.lexically_normal().string();
}

}  // namespace

ArtService artServiceOf(const std::filesystem::path& room, MediaKind kind) {
  if (kind == MediaKind::Movies || toLower(room.filename().string()) == "kids") return ArtService::Tmdb;
  return kind == MediaKind::Series ? ArtService::TvArt : ArtService::None;
}

bool IdleScans::requestScanOnce(const std::filesystem::path& room) {
  return scanRequested_.insert(keyOf(room)).second;
}

bool IdleScans::scanWhileIdle(const std::filesystem::path& room, Uint64 nowMs) {
  Uint64& at = idleScanAt_[keyOf(room)];
  if (at != 0 && nowMs < at + hourMs) return false;
  at = nowMs;
  return true;
}

void requestScan(const ScanRequests& requests, const std::filesystem::path& room, MediaKind kind) {
  const ArtService service = artServiceOf(room, kind);
  if (service == ArtService::None) return;
  const auto& request = service == ArtService::Tmdb ? requests.tmdbScanRequest : requests.tvArtScanRequest;
  if (request) request(room);
}

void requestScans(IdleScans& scans, const ScanRequests& requests, const std::filesystem::path& room,
                  MediaKind kind, Uint64 nowMs) {
  if (artServiceOf(room, kind) == ArtService::None) return;
  if (scans.requestScanOnce(room)) requestScan(requests, room, kind);
  if (scans.scanWhileIdle(room, nowMs)) requestScan(requests, room, kind);
}

}  // namespace tavek

#include "scan/scan_schedule.h"

#include "base/text.h"

namespace tavek {
namespace {

constexpr std::int64_t day = 86'400;

}  // namespace

bool isDayOld(std::optional<std::int64_t> at, std::int64_t now) {
  return !at || now < 1 || *at > now || now - *at >= day;
}

ScanVerdict tmdbScanDue(const ScanRecord& last, std::string_view room, std::optional<std::int64_t> scannedAt,
                        bool force, std::int64_t now) {
  if (force) return {true, "scan forced by --tmdb-scan"};
  const bool sameRoom = last.label && toLower(*last.label) == room;
  const bool recent = sameRoom ? !isDayOld(last.at, now) : !isDayOld(scannedAt, now);
  if (!recent) return {true, ""};
  const std::string of = room.empty() ? "" : " for " + std::string(room);
  return {false, "scan skipped" + of + " (last run under 24h)"};
}

ScanVerdict fanartScanDue(const ScanRecord& last, bool force, std::int64_t now) {
  if (force) return {true, "scan forced by --fanart-scan"};
  if (isDayOld(last.at, now)) return {true, ""};
  return {false, "scan skipped (last run under 24h)"};
}

}  // namespace tavek

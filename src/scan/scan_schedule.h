#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// When a scan is due, on plain values. All times are seconds since 1970; one before 1 is none.
namespace tavek {

/// What is kept of the last scan of a service.
struct ScanRecord {
  std::optional<std::int64_t> at;
  std::optional<std::string> label;  ///< the room's lower-cased name; fan art has none
};

struct ScanVerdict {
  bool run = false;
  std::string line;  ///< for the log; may be empty
};

/// A day has passed since then. A record from the future counts as none.
bool isDayOld(std::optional<std::int64_t> at, std::int64_t now);

/// Of a room that is about to be shown. `scannedAt` is when this run of the program scanned it last.
ScanVerdict tmdbScanDue(const ScanRecord& last, std::string_view room, std::optional<std::int64_t> scannedAt,
                        bool force, std::int64_t now);
ScanVerdict fanartScanDue(const ScanRecord& last, bool force, std::int64_t now);

}  // namespace tavek

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// When a scan is due: once a day for each service. Times are seconds since 1970; a clock that fails gives
/// less than 1, and a record from the future counts as none.
namespace tavek {

struct ScanDecision {
  bool run = false;
  std::string line = {};  ///< for the log; may be empty
  bool operator==(const ScanDecision&) const = default;
};

/// What the last scans have left behind.
struct TmdbScanRecord {
  std::optional<std::int64_t> last;   ///< of any room, as it is stored
  std::optional<std::string> label;   ///< which room that was
  std::optional<std::int64_t> inRun;  ///< when the asked room was last scanned in this run
};

/// The label of a room, from the name of its folder.
std::string scanLabelOf(std::string_view folderName);

/// Whether a room that is about to be shown is scanned; `folder` is its label. Another room than the last one
/// is, unless that was done in this run already.
ScanDecision tmdbScanDue(std::int64_t now, const TmdbScanRecord& record, std::string_view folder, bool force);
/// The same for the art of series, for all rooms at once.
ScanDecision fanartScanDue(std::int64_t now, std::optional<std::int64_t> last, bool force);

/// The scans of the start, which no flag forces.
ScanDecision tmdbStartScanDue(std::int64_t now, std::optional<std::int64_t> last, std::string_view folder);
ScanDecision fanartStartScanDue(std::int64_t now, std::optional<std::int64_t> last);

}  // namespace tavek

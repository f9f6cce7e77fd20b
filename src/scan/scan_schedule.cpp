#include "scan/scan_schedule.h"

#include "base/text.h"

namespace tavek {
namespace {

constexpr std::int64_t day = 86400;

/// Less than a day ago, by a clock that works; what lies ahead says nothing.
bool isRecent(std::int64_t now, std::optional<std::int64_t> last) {
  return now >= 1 && last && *last <= now && *last > now - day;
}

/// The scans of the start wait for a clock that works, unless there was none before.
bool isStartDue(std::int64_t now, std::optional<std::int64_t> last) {
  return !last || (now > 0 && !isRecent(now, last));
}

std::string skippedLine(std::string_view label) {
  const std::string name = label.empty() ? "" : " for " + std::string(label);
  return "scan skipped" + name + " (last run under 24h)";
}

}  // namespace

std::string scanLabelOf(std::string_view folderName) {
  return toLower(folderName);
}

ScanDecision tmdbScanDue(std::int64_t now, const TmdbScanRecord& record, std::string_view folder,
                         bool force) {
  if (force) return {true, "scan forced by --tmdb-scan"};
  if (record.label && toLower(*record.label) == folder && isRecent(now, record.last))
    return {false, skippedLine(*record.label)};
  if (isRecent(now, record.inRun)) return {false, skippedLine(folder)};
  return {true};
}

ScanDecision fanartScanDue(std::int64_t now, std::optional<std::int64_t> last, bool force) {
  if (force) return {true, "scan forced by --fanart-scan"};
  if (isRecent(now, last)) return {false, skippedLine("")};
  return {true};
}

ScanDecision tmdbStartScanDue(std::int64_t now, std::optional<std::int64_t> last, std::string_view folder) {
  if (!isStartDue(now, last)) return {};
  const std::string label = folder.empty() ? "movies" : std::string(folder);
  return {true, "startup scan: running TMDB before loading " + label};
}

ScanDecision fanartStartScanDue(std::int64_t now, std::optional<std::int64_t> last) {
  if (!isStartDue(now, last)) return {};
  return {true, "startup scan: running FANART before loading tv"};
}

}  // namespace tavek

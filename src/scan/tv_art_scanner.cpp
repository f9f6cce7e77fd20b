#include "scan/tv_art_scanner.h"

#include <system_error>

#include "base/console.h"
#include "base/process_flags.h"
#include "scan/scan_status.h"
#include "scan/series_scan.h"

namespace tavek {

ScanResult TvArtScanner::scan(const TidyContext& context) const {
  const ScanActivity activity("[FANART] Scanning tv");
  std::error_code ignored;
  if (!std::filesystem::exists(root_, ignored)) {
    if (fanartConsoleEnabled)
      console::logFanart("Skipping tv art scan (root not found: " + root_.string() + ")");
    return ScanResult::Skipped;
  }
  TmdbClient tmdb({keys_.tmdbKey, keys_.tmdbToken}, context.stop);
  TvdbClient tvdb(keys_.tvdbKey, keys_.tvdbPin, context.stop);
  SeriesScan scan(keys_.fanartKey, keys_.fanartClientKey, tmdb, tvdb, context);
  scan.run(root_);
  return scan.netGone() ? ScanResult::NetGone : ScanResult::Done;
}

}  // namespace tavek

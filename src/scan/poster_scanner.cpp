#include "scan/poster_scanner.h"

#include <system_error>

#include "base/console.h"
#include "base/paths.h"
#include "base/text.h"
#include "scan/film_scan.h"
#include "scan/scan_status.h"

namespace tavek {

std::string scanLabelOf(const std::filesystem::path& root) {
  const std::string name = root == mediaRoot() ? "" : root.filename().string();
  const std::string lower = toLower(name);
  if (lower.empty() || lower == "movies") return "movies";
  return lower == "series" || lower == "tv" ? "tv" : name;
}

ScanResult PosterScanner::scan(const std::filesystem::path& root, const TidyContext& context) const {
  const std::filesystem::path& walked = root.empty() ? root_ : root;
  const ScanActivity activity("[TMDB] Scanning " + scanLabelOf(walked));
  std::error_code ignored;
  if (!std::filesystem::exists(walked, ignored)) {
    if (tmdbConsoleEnabled)
      console::logTmdb("Skipping poster scan (root not found: " + walked.string() + ")");
    return ScanResult::Skipped;
  }
  TmdbClient tmdb({apiKey_, bearerToken_}, context.stop);
  FilmScan(tmdb, context).run(walked);
  return tmdb.netGone() ? ScanResult::NetGone : ScanResult::Done;
}

}  // namespace tavek

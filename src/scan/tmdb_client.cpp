#include "scan/tmdb_client.h"

#include "base/paths.h"
#include "library/file_types.h"
#include "scan/art_files.h"
#include "scan/scan_status.h"

namespace tavek {

/// The key goes before what is asked.
std::string TmdbClient::get(const std::string& path, const std::string& query) {
  if (!hasCredentials()) return {};
  std::string url = tmdbApiBase() + path + '?';
  if (!client_.apiKey.empty()) url += "api_key=" + urlEncode(client_.apiKey) + (query.empty() ? "" : "&");
  return session_.httpGet(client_, url + query);
}

std::vector<MovieCandidate> TmdbClient::searchFilms(const ParsedName& name) {
  const std::string year = name.year ? "&year=" + std::to_string(*name.year) : "";
  return readCandidates(get("/3/search/movie", "query=" + urlEncode(name.title) + year), SearchKind::Film);
}

std::vector<MovieCandidate> TmdbClient::searchSeries(const ParsedName& name) {
  const std::string year = name.year ? "&first_air_date_year=" + std::to_string(*name.year) : "";
  return readCandidates(get("/3/search/tv", "query=" + urlEncode(name.title) + year), SearchKind::Series);
}

std::string TmdbClient::filmDetails(std::int32_t id) {
  return get("/3/movie/" + std::to_string(id), "language=en-US");
}

std::string TmdbClient::filmWithoutLanguage(std::int32_t id) {
  return get("/3/movie/" + std::to_string(id), "");
}

std::string TmdbClient::filmImages(std::int32_t id) {
  return get("/3/movie/" + std::to_string(id) + "/images", "include_image_language=en,null");
}

std::optional<std::int32_t> TmdbClient::tvdbNumberOf(std::int32_t seriesId) {
  return readTvdbNumber(get("/3/tv/" + std::to_string(seriesId) + "/external_ids", ""));
}

bool TmdbClient::downloadImage(std::string_view size, const std::string& imagePath,
                               const std::filesystem::path& target, FileKind kind,
                               const std::filesystem::path& room) {
  if (!hasCredentials() || imagePath.empty()) return false;
  if (isUsableFile(target)) return true;
  if (!removeIfPresent(target)) return false;
  const ScanMessage message("[TMDB] downloading " + pathInRoom(target, room));
  return images_.httpDownload(client_, tmdbImageBase() + "/t/p/" + std::string(size) + imagePath, target,
                              kind);
}

}  // namespace tavek

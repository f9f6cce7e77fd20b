#include "scan/series_scan.h"

#include <algorithm>
#include <system_error>
#include <unordered_map>

#include "base/console.h"
#include "base/paths.h"
#include "base/text.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "scan/art_files.h"
#include "scan/episode_stem.h"
#include "scan/film_folder.h"
#include "scan/names.h"
#include "scan/scan_status.h"
#include "state/small_file.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// A picture or sound of a series, and where the answer has it: under the first of these lists that has any.
struct ArtRow {
  const char* file;
  const char* what;
  FileKind kind;
  std::vector<std::pair<const char*, const char*>> lists;  ///< with the ending that the address must have
};

const std::vector<ArtRow>& artRows() {
  static const std::vector<ArtRow> rows{
      {"poster.jpg", "poster", FileKind::Image, {{"tvposter", ".jpg"}}},
      {"fanart.jpg", "fanart", FileKind::Image, {{"tvthumb", ".jpg"}}},
      {"theme.mp3", "theme", FileKind::Mp3, {{"tvtheme", ".mp3"}, {"tvtheme", ""}}},
      {"clearlogo.png",
       "clearlogo",
       FileKind::Png,
       {{"clearlogo", ".png"}, {"hdtvlogo", ".png"}, {"hdclearlogo", ".png"}}}};
  return rows;
}

void log(const std::string& line) {
  if (fanartConsoleEnabled) console::logFanart(line);
}

std::optional<std::string> wantedStem(const fs::path& video, const std::string& seriesTitle,
                                      std::optional<std::string_view> title) {
  return episodeStem(video.stem().string(), video.parent_path().filename().string(), seriesTitle, title);
}

/// A name that was given for want of a title.
bool hasPlaceholder(const std::string& stem) {
  const auto mark = findEpisodeMark(stem);
  const std::string number = mark ? std::to_string(mark->episode) : "";
  return stem.ends_with(" - Episode " + number) || stem.ends_with(" - Episode 0" + number);
}

}  // namespace

void SeriesScan::run(const fs::path& root) {
  const std::vector<fs::path> rooms = root == mediaRoot() ? listRoots(tidy_.stop) : std::vector{root};
  bool any = false;
  for (const fs::path& room : rooms) {
    if (tidy_.stop || classifyFolder(room, tidy_.stop) != MediaKind::Series) continue;
    if (isTidiedSeriesRoom(room)) settleRenames(tidy_, room);
    for (const SeriesGroup& group : groupsOf(room)) {
      if (tidy_.stop) break;
      any = true;
      scanSeries(group);
    }
    if (isTidiedSeriesRoom(room)) settleRenames(tidy_, room);
    if (std::exchange(changed_, false)) noteFolderChanged(room);
  }
  if (!any && !tidy_.stop) log("no tv videos found under " + root.string());
}

/// By the folders directly in the room. A video beside them is of no series.
std::vector<SeriesScan::SeriesGroup> SeriesScan::groupsOf(const fs::path& room) const {
  std::vector<SeriesGroup> groups;
  std::unordered_map<std::string, std::size_t> places;
  walkBelow(room, tidy_.stop, [&](fs::recursive_directory_iterator entry) {
    const fs::path& path = entry->path();
    std::error_code ignored;
    const fs::file_status status = entry->symlink_status(ignored);
    if (path.filename().string().starts_with('.')) {
      if (fs::is_directory(status)) entry.disable_recursion_pending();
      return true;
    }
    if (!fs::is_regular_file(status) || !isFilmName(path.filename()) || entry.depth() < 1) return true;
    const fs::path folder = room / *path.lexically_relative(room).begin();
    const auto [place, isNew] = places.try_emplace(folder.string(), groups.size());
    if (isNew) groups.push_back({room, folder, {}});
    groups[place->second].videos.push_back(path);
    return true;
  });
  return groups;
}

/// Nothing is missing that a service may have.
bool SeriesScan::complete(const SeriesGroup& group) const {
  const bool art =
      std::ranges::none_of(artRows(), [&](const ArtRow& row) { return isMissing(group.folder / row.file); });
  if (!art || !isTidiedSeriesRoom(group.room)) return art;
  return std::ranges::all_of(group.videos, [&](const fs::path& video) {
    const std::string stem = video.stem().string();
    const auto wanted = wantedStem(video, group.folder.filename().string(), {});
    return !wanted || (*wanted == stem && !(tvdb_.hasKey() && hasPlaceholder(stem)));
  });
}

void SeriesScan::scanSeries(const SeriesGroup& group) {
  if (complete(group)) return;
  const std::string name = trim(group.folder.filename().string());
  const std::string id = tvdbIdOf(group, name);
  if (id.empty()) {
    renameSeriesEpisodes(group, name, nullptr);
    return log("tvdb id not found for " + group.folder.string());
  }
  const std::string art = artOf(id);
  // What the service does not know has its names all the same; without a connection all is left for later.
  if (art.empty()) log("fanart fetch failed for tvdb=" + id);
  if (art.empty() && !fanart_.answered()) return;
  const std::string title = readSeriesName(art).value_or(name);
  if (tvdb_.hasKey()) {
    const EpisodeTable table = tvdb_.fetchEpisodeTable(id);
    renameSeriesEpisodes(group, title, &table);
  } else {
    renameSeriesEpisodes(group, title, nullptr);
  }
  if (art.empty()) return;
  log("scanning tv " + group.folder.string() + " tvdb=" + id);
  fetchArt(group, art);
}

/// Of the file that a user may have put there; else of the film database, which is then remembered.
std::string SeriesScan::tvdbIdOf(const SeriesGroup& group, const std::string& name) {
  const fs::path file = group.folder / "tvdb.id";
  const SmallFile known = readSmallFile(file);
  if (auto id = readTvdbId(known.text)) return *id;
  if (!tmdb_.hasCredentials() || tidy_.stop || tmdb_.ended()) return {};
  const ParsedName parsed = parseTitleAndYear(name);
  if (parsed.title.empty()) return {};
  const MovieCandidate series = chooseCandidate(tmdb_.searchSeries(parsed), parsed.year);
  if (!series.id) return {};
  const auto number = tmdb_.tvdbNumberOf(*series.id);
  if (!number) return {};
  if (known.found == FileFound::Missing) writeTextFile(file, std::to_string(*number));
  return std::to_string(*number);
}

std::string SeriesScan::artOf(const std::string& tvdbId) {
  std::string url = fanartApiBase() + "/v3/tv/" + tvdbId + "?api_key=" + urlEncode(fanartKey_);
  if (!fanartClientKey_.empty()) url += "&client_key=" + urlEncode(fanartClientKey_);
  return fanart_.httpGet({.apiKey = fanartKey_, .bearerToken = {}}, url);
}

void SeriesScan::renameSeriesEpisodes(const SeriesGroup& group, const std::string& seriesTitle,
                                      const EpisodeTable* table) {
  if (!isTidiedSeriesRoom(group.room)) return;
  for (const fs::path& video : group.videos) {
    if (tidy_.stop) return;
    renameEpisode(group.room, video, seriesTitle, table);
  }
}

void SeriesScan::renameEpisode(const fs::path& room, const fs::path& video, const std::string& seriesTitle,
                               const EpisodeTable* table) {
  const std::string stem = video.stem().string();
  const auto season = seasonNumberOf(video.parent_path().filename().string());
  const auto mark = season ? findEpisodeMark(stem) : std::nullopt;
  if (!mark || (tidy_.busy && tidy_.busy(video))) return;
  std::optional<std::string_view> title;
  if (table != nullptr) {
    const auto entry = table->find({*season, mark->episode});
    if (entry != table->end() && !entry->second.empty()) title = entry->second;
    if (!title)
      log("missing tvdb episode title for " + episodeTag(*season, mark->episode) + " in " + seriesTitle);
  }
  const auto wanted = wantedStem(video, seriesTitle, title);
  if (!wanted || *wanted == stem) return;
  const fs::path now = renameEpisodeTo(tidy_, room, video, *wanted);
  if (now == video) return;
  log("renamed episode " + video.string() + " -> " + now.string());
  changed_ = true;
}

void SeriesScan::fetchArt(const SeriesGroup& group, const std::string& art) {
  bool anyMissing = false;
  for (const ArtRow& row : artRows()) {
    const fs::path file = group.folder / row.file;
    if (tidy_.stop || fanart_.ended() || !isMissing(file)) continue;
    anyMissing = true;
    std::string url;
    for (const auto& [list, ending] : row.lists) {
      if (url.empty()) url = pickArt(art, list, ending).value_or("");
    }
    if (url.empty()) {
      log(std::string(row.what) + " missing for " + group.folder.string());
    } else {
      downloadArt(url, file, row.kind, group.room);
    }
  }
  if (anyMissing) fetchSeasonPosters(group, art);
}

/// A season without one of its own gets that of the series.
void SeriesScan::fetchSeasonPosters(const SeriesGroup& group, const std::string& art) {
  for (const std::string& name : contentOf(group.folder).folders) {
    const auto season = seasonNumberOf(name);
    const fs::path poster = group.folder / name / "poster.jpg";
    if (tidy_.stop || fanart_.ended() || !season || !isMissing(poster)) continue;
    const std::string url = pickSeasonArt(art, "seasonposter", ".jpg", *season).value_or("");
    if (url.empty()) log("season poster missing for " + poster.parent_path().string());
    if (!url.empty() && downloadArt(url, poster, FileKind::Image, group.room)) continue;
    std::error_code ignored;
    if (isUsableFile(group.folder / "poster.jpg"))
      changed_ |= fs::copy_file(group.folder / "poster.jpg", poster, ignored);
  }
}

bool SeriesScan::downloadArt(const std::string& url, const fs::path& path, FileKind kind,
                             const fs::path& room) {
  if (fanartKey_.empty() || url.empty()) return false;
  const ScanMessage message("[FANART] downloading " + pathInRoom(path, room));
  const bool done = fanart_.httpDownload({.apiKey = fanartKey_, .bearerToken = {}}, url, path, kind);
  changed_ |= done;
  return done;
}

}  // namespace tavek

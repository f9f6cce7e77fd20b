#include "scan/film_scan.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <utility>

#include "base/console.h"
#include "base/paths.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "scan/art_files.h"
#include "scan/film_folder.h"
#include "scan/names.h"
#include "scan/scan_status.h"
#include "scan/tidy_rules.h"
#include "state/small_file.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// The screen lists a room anew after this long, so that posters come in while one browses.
constexpr std::chrono::seconds tellEvery{3};

void log(const std::string& line) {
  if (tmdbConsoleEnabled) console::logTmdb(line);
}

std::string quotedTitle(const std::string& title) {
  return '"' + title + '"';
}

/// The films of a room, in the order of the walk. What is hidden, is an extra or lies on a disc is none.
std::vector<fs::path> filmsOf(const fs::path& room, const Flag& stop) {
  std::vector<fs::path> films;
  walkBelow(room, stop, [&](fs::recursive_directory_iterator entry) {
    const std::string name = entry->path().filename().string();
    std::error_code ignored;
    const fs::file_status status = entry->symlink_status(ignored);
    if (fs::is_directory(status)) {
      if (name.starts_with('.') || isExtrasFolder(name) || isDiscFolder(name))
        entry.disable_recursion_pending();
    } else if (fs::is_regular_file(status) && !name.starts_with('.') &&
               isFilmName(entry->path().filename())) {
      films.push_back(entry->path());
    }
    return true;
  });
  return films;
}

/// What a film may be called: by its file, or by a folder of its own. That of a folder counts only with its
/// year: many a folder of home videos has the name of some film.
std::vector<ParsedName> readingsOf(const fs::path& video, bool ownFolder) {
  std::vector<ParsedName> readings = searchNames(video.stem().string());
  if (!ownFolder) return readings;
  std::vector<ParsedName> ofFolder = searchNames(video.parent_path().filename().string());
  std::erase_if(ofFolder, [](const ParsedName& name) { return !name.year; });
  if (!ofFolder.empty() && (readings.empty() || !readings.front().year)) readings.swap(ofFolder);
  for (ParsedName& name : ofFolder) {
    if (std::ranges::find(readings, name) == readings.end()) readings.push_back(std::move(name));
  }
  return readings;
}

bool isPlausible(const ParsedName& name, const MovieCandidate& film) {
  return film.title && plausibleMatch(name, *film.title, film.year);
}

/// One that is surely meant, of that very year if there is one.
const MovieCandidate* sureCandidate(const ParsedName& name, const std::vector<MovieCandidate>& films) {
  const MovieCandidate* found = nullptr;
  for (const MovieCandidate& film : films) {
    if (!isPlausible(name, film)) continue;
    if (name.year && film.year == name.year) return &film;
    if (found == nullptr) found = &film;
  }
  return found;
}

}  // namespace

void FilmScan::run(const fs::path& root) {
  const std::vector<fs::path> rooms = root == mediaRoot() ? listRoots(tidy_.stop) : std::vector{root};
  for (const fs::path& room : rooms) {
    if (tidy_.stop || tmdb_.ended()) return;
    if (classifyFolder(room, tidy_.stop) == MediaKind::Movies) scanRoom(room);
  }
}

void FilmScan::scanRoom(const fs::path& room) {
  const std::vector<fs::path> films = filmsOf(room, tidy_.stop);
  log("scanning " + std::to_string(films.size()) + " videos under " + room.string());
  if (isTidiedFilmRoom(room)) settleRenames(tidy_, room);
  for (const fs::path& film : films) {
    if (tidy_.stop || tmdb_.ended()) break;
    scanFilm(room, film);
    tellChange(room, false);
  }
  if (isTidiedFilmRoom(room)) settleRenames(tidy_, room);
  tellChange(room, true);
}

void FilmScan::tellChange(const fs::path& room, bool atOnce) {
  const auto now = std::chrono::steady_clock::now();
  if (!changed_ || (!atOnce && now < toldAt_ + tellEvery)) return;
  noteFolderChanged(room);
  changed_ = false;
  toldAt_ = now;
}

FilmScan::Film FilmScan::filmAt(const fs::path& room, const fs::path& video) {
  const fs::path folder = video.parent_path();
  Film film;
  film.room = room;
  film.video = video;
  film.ownFolder = folder != room && isOwnFolder(folder, video, video.stem().string());
  if (film.ownFolder) {
    film.poster = folder / "poster.jpg";
    film.fanart = folder / "fanart.jpg";
    film.logo = folder / "clearlogo.png";
    film.metadata = folder / "metadata.json";
  } else {
    // Beside other films only a picture of its own name is no other one's.
    film.poster = folder / (video.stem().string() + ".poster.jpg");
  }
  const auto missing = [](const fs::path& file) { return !file.empty() && isMissing(file); };
  film.posterMissing = missing(film.poster);
  film.fanartMissing = missing(film.fanart);
  film.logoMissing = missing(film.logo);
  film.metadataMissing = missing(film.metadata);
  return film;
}

void FilmScan::tellCheck(const Film& film) const {
  if (!tmdbConsoleEnabled) return;
  const std::string path = film.video.string();
  const MediaNotes& notes = tidy_.stored.notes;
  const ParsedName parsed = parseTitleAndYear(film.video.stem().string());
  const bool named = buildMediaName(parsed.title, parsed.year) == film.video.stem();
  log("check " + path + " poster=" + okOrMissing(film.posterMissing) +
      " fanart=" + okOrMissing(film.fanartMissing) + " imdb=" + okOrMissing(!notes.scanNoteA(path)) +
      " tmdb=" + okOrMissing(!notes.scanNoteB(path)) + " rename=" + (named ? "no" : "yes"));
  log("targets poster=" + film.poster.string() + " fanart=" + film.fanart.string());
}

void FilmScan::scanFilm(const fs::path& room, const fs::path& video) {
  if (tidy_.busy && tidy_.busy(video)) return;
  Film film = filmAt(room, video);
  tellCheck(film);
  std::optional<Match> match = knownMatch(film);
  // Beside other films a picture is all that there is to have, and what kept the film there once still does.
  if (film.complete() && !film.ownFolder) return;
  if (!match && film.complete()) return;
  if (!match) match = search(film);
  if (!match) return;
  film = tidied(film, *match);
  // One that was started meanwhile gets all that it is to have in its new place, later.
  if (tidy_.busy && tidy_.busy(film.video)) return;
  fetch(film, match->film);
}

/// What the metadata beside the film tell of it.
std::optional<FilmScan::Match> FilmScan::knownMatch(const Film& film) {
  if (film.metadata.empty() || film.metadataMissing) return {};
  const std::string text = readSmallFile(film.metadata).text;
  noteIds(film.video, readIds(text));
  MovieCandidate known = readDetails(text);
  if (!known.id || !known.title) return {};
  const auto readings = readingsOf(film.video, film.ownFolder);
  const bool sure = std::ranges::any_of(readings, [&](const auto& name) { return isPlausible(name, known); });
  return Match{std::move(known), sure};
}

/// The first reading that finds a film of its title; else what the first one finds that finds any.
std::optional<FilmScan::Match> FilmScan::search(const Film& film) {
  std::optional<Match> guess;
  for (const ParsedName& name : readingsOf(film.video, film.ownFolder)) {
    if (name.title.empty() || tidy_.stop || tmdb_.ended()) break;
    const std::vector<MovieCandidate> found = tmdb_.searchFilms(name);
    if (const MovieCandidate* sure = sureCandidate(name, found)) {
      log("query title=" + quotedTitle(*sure->title) +
          " year=" + (sure->year ? std::to_string(*sure->year) : "?") +
          " id=" + (sure->id ? std::to_string(*sure->id) : "?"));
      return Match{*sure, true};
    }
    if (!guess) {
      if (!found.empty()) guess = Match{chooseCandidate(found, name.year), false};
    }
  }
  if (!guess) log("poster not found for " + quotedTitle(film.video.stem().string()));
  return guess;
}

FilmScan::Film FilmScan::tidied(const Film& film, const Match& match) {
  if (!match.sure || !isTidiedFilmRoom(film.room)) return film;
  std::optional<std::int32_t> year = match.film.year;
  if (!year) year = parseTitleAndYear(film.video.stem().string()).year;
  const fs::path now = tidyFilm(tidy_, film.room, film.video, buildMediaName(*match.film.title, year));
  if (now == film.video) return film;
  changed_ = true;
  return filmAt(film.room, now);
}

void FilmScan::fetch(const Film& film, const MovieCandidate& match) {
  const std::string id = match.id ? std::to_string(*match.id) : "";
  fetchImage(film, "poster", film.posterMissing ? film.poster : fs::path(), "w342",
             match.posterPath.value_or(""), FileKind::Image);
  fetchImage(film, "fanart", film.fanartMissing ? film.fanart : fs::path(), "w1280",
             match.backdropPath ? *match.backdropPath : match.posterPath.value_or(""), FileKind::Image);
  if (!match.id) return;
  if (film.logoMissing && !tidy_.stop) {
    fetchImage(film, "clearlogo", film.logo, "original", firstLogo(tmdb_.filmImages(*match.id)).value_or(""),
               FileKind::Png);
  }
  if (film.metadataMissing) fetchMetadata(film, *match.id);
  const MediaNotes& notes = tidy_.stored.notes;
  if (film.ownFolder || notes.scanNoteA(film.video.string()) || tidy_.stop) return;
  FilmIds ids = readIds(tmdb_.filmWithoutLanguage(*match.id));
  ids.tmdbId = match.id;
  noteIds(film.video, ids);
}

bool FilmScan::fetchImage(const Film& film, const char* what, const fs::path& target, std::string_view size,
                          const std::string& imagePath, FileKind kind) {
  if (target.empty() || tidy_.stop || tmdb_.ended()) return false;
  const std::string name = what;
  if (imagePath.empty()) {
    log(name + " not found for " + quotedTitle(film.video.stem().string()));
    return false;
  }
  const std::string way = name + " for " + film.video.string() + " -> " + target.string();
  log("downloading " + way);
  if (!tmdb_.downloadImage(size, imagePath, target, kind, film.room)) {
    log(name + " download failed for " + film.video.string());
    return false;
  }
  log("downloaded " + way);
  changed_ = true;
  return true;
}

void FilmScan::fetchMetadata(const Film& film, std::int32_t id) {
  if (tidy_.stop || tmdb_.ended()) return;
  const std::string body = tmdb_.filmDetails(id);
  if (body.empty()) return log("failed to fetch metadata for " + film.video.string());
  if (!writeTextFile(film.metadata, body)) {
    log("failed to write metadata for " + film.video.string());
  } else {
    log("wrote metadata " + film.metadata.string());
  }
  FilmIds ids = readIds(body);
  ids.tmdbId = id;
  noteIds(film.video, ids);
}

void FilmScan::noteIds(const fs::path& video, const FilmIds& ids) {
  MediaNotes& notes = tidy_.stored.notes;
  const std::string path = video.string();
  if (ids.tmdbId && !notes.scanNoteB(path)) notes.setScanNoteB(path, std::to_string(*ids.tmdbId));
  if (ids.imdbId && !notes.scanNoteA(path)) notes.setScanNoteA(path, *ids.imdbId);
}

}  // namespace tavek

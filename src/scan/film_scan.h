#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "scan/tidy.h"
#include "scan/tmdb_client.h"

namespace tavek {

/// One walk over the films of one or all rooms: each gets its name and its folder, where its room is tidied
/// and the film is known for sure, and what is missing of its poster, fan art, logo and metadata. What is
/// complete costs no request. Of a worker's thread; ends early, between two films, when `tidy.stop` is set
/// or the database answers no more.
class FilmScan {
 public:
  FilmScan(TmdbClient& tmdb, const TidyContext& tidy) : tmdb_(tmdb), tidy_(tidy) {}
  /// The library, or one room.
  void run(const std::filesystem::path& root);

 private:
  /// A video with the files that are to lie with it; those that it is not to have are empty.
  struct Film {
    std::filesystem::path room, video, poster, fanart, logo, metadata;
    bool ownFolder = false;
    bool posterMissing = false, fanartMissing = false, logoMissing = false, metadataMissing = false;
    bool complete() const { return !posterMissing && !fanartMissing && !logoMissing && !metadataMissing; }
  };
  /// What the database has for a film, and whether it is sure to be this one.
  struct Match {
    MovieCandidate film;
    bool sure = false;
  };

  void scanRoom(const std::filesystem::path& room);
  void scanFilm(const std::filesystem::path& room, const std::filesystem::path& video);
  static Film filmAt(const std::filesystem::path& room, const std::filesystem::path& video);
  void tellCheck(const Film& film) const;
  std::optional<Match> knownMatch(const Film& film);
  std::optional<Match> search(const Film& film);
  Film tidied(const Film& film, const Match& match);
  void fetch(const Film& film, const MovieCandidate& match);
  bool fetchImage(const Film& film, const char* what, const std::filesystem::path& target,
                  std::string_view size, const std::string& imagePath, FileKind kind);
  void fetchMetadata(const Film& film, std::int32_t id);
  void noteIds(const std::filesystem::path& video, const FilmIds& ids);
  void tellChange(const std::filesystem::path& room, bool atOnce);

  TmdbClient& tmdb_;
  const TidyContext& tidy_;
  bool changed_ = false;
  std::chrono::steady_clock::time_point toldAt_;
};

}  // namespace tavek

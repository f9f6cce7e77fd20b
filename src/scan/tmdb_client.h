#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "scan/http.h"
#include "scan/names.h"
#include "scan/replies.h"

namespace tavek {

/// What the scans ask the film database, over one session. Of one thread; a failure is an empty answer.
class TmdbClient {
 public:
  TmdbClient(ScanClient client, const Flag& stop)
      : client_(std::move(client)), session_(tmdbService(), stop), images_(tmdbService(), stop) {}

  bool hasCredentials() const { return client_.hasCredentials(); }
  /// Nothing more is asked.
  bool ended() const { return session_.ended(); }
  bool netGone() const { return session_.netGone(); }

  /// In the order of the answer.
  std::vector<MovieCandidate> searchFilms(const ParsedName& name);
  std::vector<MovieCandidate> searchSeries(const ParsedName& name);
  /// The bodies of the answers. The language is that of the metadata file.
  std::string filmDetails(std::int32_t id);
  std::string filmWithoutLanguage(std::int32_t id);
  std::string filmImages(std::int32_t id);
  std::optional<std::int32_t> tvdbNumberOf(std::int32_t seriesId);
  /// Unless the file is there already. The status line tells of it, by its path in the room.
  bool downloadImage(std::string_view size, const std::string& imagePath, const std::filesystem::path& target,
                     FileKind kind, const std::filesystem::path& room);

 private:
  std::string get(const std::string& path, const std::string& query);

  const ScanClient client_;
  HttpSession session_;
  HttpSession images_;  ///< with their host, which has a pace of its own
};

}  // namespace tavek

#pragma once

#include <filesystem>
#include <string>

#include "scan/poster_scanner.h"
#include "scan/tidy.h"

namespace tavek {

/// The user's keys for the services that know of series.
struct TvArtKeys {
  std::string fanartKey, fanartClientKey;
  std::string tmdbKey, tmdbToken;
  std::string tvdbKey, tvdbPin;
};

/// Fetches the art of the series rooms and gives their episodes names.
class TvArtScanner {
 public:
  TvArtScanner(TvArtKeys keys, std::filesystem::path root) : keys_(std::move(keys)), root_(std::move(root)) {}

  /// One scan on the calling thread.
  ScanResult scan(const TidyContext& context) const;

 private:
  const TvArtKeys keys_;
  const std::filesystem::path root_;
};

}  // namespace tavek

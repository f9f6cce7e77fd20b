#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "scan/http.h"
#include "scan/replies.h"

namespace tavek {

/// The episode database: one login and one session a scan. Of one thread; a failure is an empty answer.
class TvdbClient {
 public:
  TvdbClient(std::string apiKey, std::string pin, const Flag& stop)
      : apiKey_(std::move(apiKey)), pin_(std::move(pin)), session_(tvdbService(), stop) {}

  bool hasKey() const { return !apiKey_.empty(); }
  /// The titles of a series' episodes, of at most forty pages; of those that came before a failure.
  EpisodeTable fetchEpisodeTable(const std::string& tvdbId);

 private:
  bool logIn();

  const std::string apiKey_;
  const std::string pin_;
  HttpSession session_;
  ScanClient client_;  ///< with the token of the login
};

}  // namespace tavek

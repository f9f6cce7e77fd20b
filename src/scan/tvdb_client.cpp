#include "scan/tvdb_client.h"

#include "base/paths.h"
#include "state/json_write.h"

namespace tavek {
namespace {

constexpr int mostPages = 40;

}  // namespace

bool TvdbClient::logIn() {
  if (!client_.bearerToken.empty()) return true;
  std::string body = "{\"apikey\":" + quotedString(apiKey_);
  if (!pin_.empty()) body += ",\"pin\":" + quotedString(pin_);
  client_.bearerToken = readToken(session_.httpPost(tvdbApiBase() + "/login", body + "}")).value_or("");
  return !client_.bearerToken.empty();
}

EpisodeTable TvdbClient::fetchEpisodeTable(const std::string& tvdbId) {
  EpisodeTable table;
  if (apiKey_.empty() || tvdbId.empty() || !logIn()) return table;
  const std::string episodes = tvdbApiBase() + "/series/" + tvdbId + "/episodes/default?page=";
  std::int32_t page = 0;
  for (int count = 0; count < mostPages; ++count) {
    const std::string body = session_.httpGet(client_, episodes + std::to_string(page) + "&language=eng");
    if (body.empty()) break;
    EpisodePage read = readEpisodePage(body);
    for (auto& [episode, title] : read.titles) table.insert_or_assign(episode, std::move(title));
    if (!read.next || *read.next <= page) break;
    page = *read.next;
  }
  return table;
}

}  // namespace tavek

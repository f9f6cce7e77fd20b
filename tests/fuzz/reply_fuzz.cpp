#include <cstdlib>

#include "scan/credentials.h"
#include "scan/episode_stem.h"
#include "scan/names.h"
#include "scan/replies.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

/// Whatever a name is made of, it is one name.
void requireFileName(const std::string& name) {
  require(!name.empty() && name.size() <= 180 && name[0] != '.');
  for (const char c : name) require(c != '/' && static_cast<unsigned char>(c) >= ' ' && c != 0x7F);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavek;
  const std::string text(data, data + size);
  for (const auto kind : {SearchKind::Film, SearchKind::Series}) {
    const MovieCandidate chosen = chooseCandidate(readCandidates(text, kind), 1999);
    require(!chosen.posterPath || imagePath(*chosen.posterPath));
    requireFileName(buildMediaName(chosen.title.value_or(text), chosen.year));
  }
  firstLogo(text);
  readIds(text);
  readTvdbNumber(text);
  readTvdbId(text);
  readSeriesName(text);
  pickArt(text, "tvposter", ".jpg");
  pickSeasonArt(text, "seasonposter", ".jpg", 3);
  readToken(text);
  const EpisodePage page = readEpisodePage(text, 3);
  require(!page.next || *page.next > 3);
  Credentials credentials;
  readTmdbConfig(text, credentials);
  readFanartConfig(text, credentials);

  const ParsedName parsed = parseTitleAndYear(text);
  for (const ParsedName& name : searchNames(text)) plausibleMatch(parsed, name.title, name.year);
  const auto stem = episodeStem(text, "Season 1", parsed.title, {});
  if (stem) {
    requireFileName(*stem);
    const auto again = episodeStem(*stem, "Season 1", parsed.title, {});
    require(!again || again == stem);
  }
  return 0;
}

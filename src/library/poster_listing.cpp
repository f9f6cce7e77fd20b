#include "library/poster_listing.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/paths.h"
#include "base/text.h"
#include "library/episode_name.h"
#include "library/episode_still.h"
#include "library/file_types.h"
#include "library/film_candidates.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "library/poster_candidate.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t albumLimit = 300;

ListingKind listingKindOf(const fs::path& folder) {
  if (classifyFolder(folder) == MediaKind::Music) return ListingKind::Albums;
  if (!seriesRootOf(folder)) return ListingKind::Videos;
  switch (seriesDepth(folder)) {
    case 0:
      return ListingKind::Series;
    case 1:
      return ListingKind::Seasons;
    default:
      return ListingKind::Episodes;
  }
}

/// A tile for each folder directly in this one, for the seasons only if asked so.
std::vector<ListedPoster> listFolders(const fs::path& folder, bool seasonsOnly, const Flag& stop) {
  std::vector<std::pair<std::string, fs::path>> found;  // with the lower-cased names
  walkIn(folder, [&](const fs::directory_entry& entry) {
    std::error_code ignored;
    std::string name = toLower(entry.path().filename().string());
    if (entry.is_directory(ignored) && (!seasonsOnly || isSeasonFolder(name))) {
      found.emplace_back(std::move(name), entry.path());
    }
    return !stop;
  });
  std::ranges::stable_sort(found, lessNatural, &std::pair<std::string, fs::path>::first);

  std::vector<ListedPoster> posters;
  for (const auto& [name, path] : found) {
    if (stop) break;
    const fs::path image = path / "poster.jpg";
    posters.push_back({image.string(), {}, matchKeyOf(image), image.string(), path.filename().string()});
  }
  return posters;
}

/// The videos directly in the folder that have an episode tag.
std::vector<PosterCandidate> episodeCandidates(const fs::path& folder, const Flag& stop) {
  std::vector<PosterCandidate> episodes;
  walkIn(folder, [&](const fs::directory_entry& entry) {
    const fs::path& file = entry.path();
    if (isVideoFile(file) && parseSeasonEpisode(file.stem().string()) && isRegularFile(entry)) {
      episodes.emplace_back(FileText(file.string()), posterTitleKey(file)).media = file.string();
    }
    return !stop;
  });
  return episodes;
}

std::vector<ListedPoster> listCandidates(std::vector<PosterCandidate> candidates, ListingKind kind,
                                         const Flag& stop) {
  orderCandidates(candidates);
  std::vector<ListedPoster> posters;
  posters.reserve(candidates.size());
  for (PosterCandidate& candidate : candidates) {
    if (stop) break;
    ListedPoster& poster = posters.emplace_back();
    poster.path = candidate.file.path();
    poster.media = std::move(candidate.media);
    poster.key = makeMatchKey(candidate.title);
    poster.image = kind == ListingKind::Episodes ? episodeStillOf(poster.path).string() : poster.path;
    if (kind == ListingKind::Episodes) poster.label = candidate.file.stem();
  }
  return posters;
}

/// An album is a folder that holds tracks; the first one found stands for it.
std::vector<ListedPoster> listAlbums(const fs::path& folder, const Flag& stop) {
  std::map<std::string, std::string> firstTracks;  // by the folder
  walkBelow(isInside(folder, musicRoot()) ? musicRoot() : folder,
            [&](const fs::recursive_directory_iterator& entry) {
              if (isAudioFile(entry->path()) && isRegularFile(*entry)) {
                FileText track(entry->path().string());
                firstTracks.try_emplace(std::string(track.folder()), track.path());
              }
              return !stop;
            });
  std::vector<ListedPoster> posters;
  for (const auto& [album, track] : firstTracks) {
    if (stop || posters.size() == albumLimit) break;
    posters.push_back({track, track, matchKeyOf(track), {}, fs::path(album).filename().string()});
  }
  return posters;
}

std::vector<ListedPoster> listKind(ListingKind kind, const fs::path& folder, const Flag& stop) {
  switch (kind) {
    case ListingKind::Series:
    case ListingKind::Seasons:
      return listFolders(folder, kind == ListingKind::Seasons, stop);
    case ListingKind::Episodes:
      return listCandidates(episodeCandidates(folder, stop), kind, stop);
    case ListingKind::Videos:
      return listCandidates(filmCandidates(folder, stop), kind, stop);
    case ListingKind::Albums:
      return listAlbums(folder, stop);
  }
  return {};
}

}  // namespace

PosterListing listPosters(const fs::path& folder, const Flag& stop) {
  const ListingKind kind = listingKindOf(folder);
  return {kind, listKind(kind, folder, stop)};
}

const char* listingNoun(ListingKind kind) {
  switch (kind) {
    case ListingKind::Series:
      return "tv folders";
    case ListingKind::Seasons:
      return "season folders";
    case ListingKind::Albums:
      return "music albums";
    case ListingKind::Episodes:
    case ListingKind::Videos:
      break;
  }
  return "poster candidates";
}

bool isSeasonFolder(std::string_view name) {
  return name.starts_with("season") || name == "special" || name == "specials" ||
         (name.size() > 1 && name[0] == 's' && isAsciiDigit(name[1]));
}

}  // namespace tavek

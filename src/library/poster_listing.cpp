#include "library/poster_listing.h"

#include <algorithm>
#include <cstdint>
#include <exception>
#include <iostream>
#include <iterator>
#include <limits>
#include <map>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "base/paths.h"
#include "base/text.h"
#include "library/album.h"
#include "library/episode_name.h"
#include "library/episode_still.h"
#include "library/file_types.h"
#include "library/film_candidates.h"
#include "library/folder_walk.h"
#include "library/media_paths.h"
#include "library/series_order.h"
#include "library/titles.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t albumLimit = 300;

ListingKind listingKindOf(const fs::path& folder, const Flag& stop) {
  learnRoomKind(folder, stop);
  if (classifyFolder(folder, stop) == MediaKind::Music) return ListingKind::Albums;
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
  std::vector<std::pair<std::string, fs::path>> found;  // with the folded names
  walkIn(folder, [&](const fs::directory_entry& entry) {
    std::error_code ignored;
    const std::string name = entry.path().filename().string();
    if (entry.is_directory(ignored) && (!seasonsOnly || isSeasonFolder(name))) {
      found.emplace_back(foldCase(name), entry.path());
    }
    return !stop;
  });
  std::ranges::stable_sort(found, lessNatural, &std::pair<std::string, fs::path>::first);

  std::vector<ListedPoster> posters;
  for (const auto& [name, path] : found) {
    if (stop) break;
    const fs::path image = folderTile(path);
    posters.push_back(
        {image.string(), {}, matchKeyOf(image), image.string(), path.filename().string(), false});
  }
  return posters;
}

/// The videos directly in the folder that have an episode tag.
PosterCandidates episodeCandidates(const fs::path& folder, const Flag& stop) {
  PosterCandidates episodes;
  walkIn(folder, [&](const fs::directory_entry& entry) {
    const fs::path& file = entry.path();
    if (isFilm(file) && parseSeasonEpisode(file.stem().string()) && isRegularFile(entry)) {
      episodes.list.emplace_back(FileText(file.string()), posterTitleKey(file), file.string());
    }
    if (file.filename() == orderFileName && isRegularFile(entry)) episodes.orders.push_back(file);
    return !stop;
  });
  return episodes;
}

using Orders = std::unordered_map<std::string, SeriesOrder>;  // by the folder

/// For candidates that stand by their folders. A file that gives no order is told of, since somebody has
/// meant one; where there is nothing to order it is none of ours.
Orders ordersOf(const std::vector<fs::path>& files, const std::vector<PosterCandidate>& candidates) {
  const auto folderOf = [](const PosterCandidate& candidate) { return candidate.file.folder(); };
  Orders orders;
  for (const fs::path& file : files) {
    const std::string folder = file.parent_path().string();
    if (!std::ranges::binary_search(candidates, std::string_view(folder), {}, folderOf)) continue;
    try {
      SeriesOrder order = readSeriesOrder(file);
      if (order.empty()) std::cerr << "series.json ignored (no order entries): " << file << std::endl;
      if (!order.empty()) orders.emplace(folder, std::move(order));
    } catch (const std::exception&) {
      std::cerr << "series.json parse failed: " << file << std::endl;
    }
  }
  return orders;
}

/// By folder, in one folder by name. Of files whose names differ in case alone the first one stays.
void sortByName(std::vector<PosterCandidate>& candidates) {
  std::ranges::stable_sort(candidates, [](const PosterCandidate& a, const PosterCandidate& b) {
    if (const auto order = a.file.folder().compare(b.file.folder()); order != 0) return order < 0;
    return lessNatural(a.name, b.name);
  });
  // Equal names of one folder now stand side by side.
  const auto same = [](const PosterCandidate& a, const PosterCandidate& b) {
    return a.name == b.name && a.file.folder() == b.file.folder();
  };
  candidates.erase(std::unique(candidates.begin(), candidates.end(), same), candidates.end());
}

/// What one of its folder's tiles is sorted by: those that the order does not know come last, by name.
struct Rank {
  std::int32_t folder = -1;
  std::int32_t sequence = 0;
  std::size_t place = 0;  ///< by name
};

/// Puts the tiles of candidates that are sorted by name in the orders of their folders.
void sortByOrders(std::vector<ListedPoster>& posters, const std::vector<PosterCandidate>& candidates,
                  const Orders& orders) {
  std::vector<Rank> ranks;
  ranks.reserve(posters.size());
  std::string_view folder;
  auto order = orders.end();
  for (std::size_t i = 0; i < posters.size(); ++i) {
    Rank rank = ranks.empty() ? Rank() : ranks.back();
    if (candidates[i].file.folder() != folder) {
      folder = candidates[i].file.folder();
      order = orders.find(std::string(folder));
      ++rank.folder;
    }
    const auto sequence = order != orders.end() ? order->second.sequenceOf(posters[i].key) : std::nullopt;
    rank.sequence = sequence.value_or(std::numeric_limits<std::int32_t>::max());
    rank.place = i;
    ranks.push_back(rank);
  }
  std::ranges::sort(ranks, {},
                    [](const Rank& rank) { return std::tuple(rank.folder, rank.sequence, rank.place); });
  std::vector<ListedPoster> sorted;
  sorted.reserve(posters.size());
  for (const Rank& rank : ranks) sorted.push_back(std::move(posters[rank.place]));
  posters = std::move(sorted);
}

std::vector<ListedPoster> listCandidates(PosterCandidates found, ListingKind kind, const Flag& stop) {
  std::vector<PosterCandidate>& candidates = found.list;
  sortByName(candidates);
  std::vector<ListedPoster> posters;
  posters.reserve(candidates.size());
  for (PosterCandidate& candidate : candidates) {
    if (stop) return posters;
    ListedPoster& poster = posters.emplace_back();
    poster.path = candidate.file.path();
    poster.media = std::move(candidate.media);
    poster.key = makeMatchKey(candidate.title);
    poster.isEpisode = kind == ListingKind::Episodes;
    poster.image = poster.isEpisode ? episodeStillOf(poster.path).string() : poster.path;
    if (poster.isEpisode) poster.label = candidate.file.stem();
  }
  if (const Orders orders = ordersOf(found.orders, candidates); !orders.empty())
    sortByOrders(posters, candidates, orders);
  return posters;
}

/// An album is a folder that holds tracks; the first one by its name stands for it.
std::vector<ListedPoster> listAlbums(const fs::path& folder, const Flag& stop) {
  std::map<std::string, std::string> firstTracks;  // by the folder
  walkBelow(isInside(folder, musicRoot()) ? musicRoot() : folder, stop,
            [&](const fs::recursive_directory_iterator& entry) {
              if (isAudioFile(entry->path()) && isRegularFile(*entry)) {
                FileText track(entry->path().string());
                std::string& first = firstTracks[std::string(track.folder())];
                if (first.empty() || track.path() < first) first = track.path();
              }
              return true;
            });
  std::vector<ListedPoster> posters;
  CoverCache covers;
  for (const auto& [album, track] : firstTracks) {
    if (stop || posters.size() == albumLimit) break;
    posters.push_back({track, track, matchKeyOf(track), findAlbumCover(covers, track).value_or("").string(),
                       fs::path(album).filename().string(), false});
  }
  return posters;
}

std::vector<ListedPoster> listKind(ListingKind kind, const fs::path& folder, const Flag& stop) {
  switch (kind) {
    case ListingKind::Series:
      return listFolders(folder, false, stop);
    case ListingKind::Seasons: {
      std::vector<ListedPoster> tiles = listFolders(folder, true, stop);
      std::ranges::move(listKind(ListingKind::Episodes, folder, stop), std::back_inserter(tiles));
      return tiles;
    }
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
  const ListingKind kind = listingKindOf(folder, stop);
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

}  // namespace tavek

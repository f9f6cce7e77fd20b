#include "display/strip/posters.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "display/strip/strip_layout.h"
#include "library/episode_name.h"
#include "library/file_types.h"
#include "library/media_paths.h"
#include "library/titles.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// Textures that make up the first screenful.
constexpr std::size_t posterTarget = postersOnScreen;
constexpr Uint64 textureCheckMs = 500;
constexpr int leastWidth = 50;

/// Asks the store for marks: an episode's own, or that of a series or a season, once per folder in a pass
/// over a whole list.
class Marks {
 public:
  Marks(StoredUsers& users, const fs::path& openFolder)
      : users_(users), byFolder_(seriesRootOf(openFolder).has_value() && seriesDepth(openFolder) <= 1) {}

  bool of(const fs::path& path, const std::string& media) {
    if (!byFolder_ || isVideoFile(path)) return !media.empty() && users_.isWatched(media);
    const fs::path folder = path.parent_path();
    const auto [known, isNew] = folders_.try_emplace(folder.string(), false);
    if (isNew) known->second = users_.hasWatchedBelow(folder);
    return known->second;
  }

 private:
  StoredUsers& users_;
  const bool byFolder_;
  std::unordered_map<std::string, bool> folders_;
};

int widthAt(SDL_Texture* texture, int height) {
  int textureWidth = 0;
  int textureHeight = 0;
  if (SDL_QueryTexture(texture, nullptr, nullptr, &textureWidth, &textureHeight) != 0 || textureHeight < 1)
    return 0;
  return std::max(leastWidth, textureWidth * height / textureHeight);
}

/// What the viewer reads on a tile of a series room: a folder's name, or an episode's title.
std::string shownName(const fs::path& tile) {
  if (!isVideoFile(tile)) return foldCase(tile.parent_path().filename().string());
  const std::string stem = tile.stem().string();
  const EpisodeLabel label = episodeLabelOf(stem);
  return foldCase(label.episode.empty() ? stem : label.title);
}

bool sameFile(const std::string& poster, const fs::path& media) {
  std::error_code ignored;
  return fs::equivalent(poster, media, ignored);
}

}  // namespace

bool Posters::isOpen(const fs::path& path) {
  const fs::path folder = path.lexically_normal();
  if (loader_.loading(folder)) return true;
  const std::size_t loaded = page_.posters.size() + loader_.pendingCount();
  return page_.folder == folder && !page_.posters.empty() && loaded >= loader_.posterTotal();
}

void Posters::openPosterFolder(SDL_Renderer* renderer, const fs::path& path) {
  if (renderer == nullptr || isOpen(path)) return;
  const fs::path folder = path.lexically_normal();
  leavePage();
  if (returnTo(folder)) return;
  page_ = {};
  page_.folder = folder;
  loader_.start(folder);
}

/// A page that is not complete, or no longer what the disk holds, is not worth keeping: it is loaded anew on
/// return.
void Posters::leavePage() {
  const bool stale = changed_ || listsAgain_;
  changed_ = listsAgain_ = false;
  again_.stop();
  next_.clear();
  page_.backlog = loader_.stop();
  const std::size_t total = page_.backlog.posterTotal;
  const bool complete = total > 0 && page_.posters.size() + page_.backlog.pendingPosters.size() >= total;
  if (complete && !stale) folderPages_[page_.folder.string()] = std::move(page_);
}

bool Posters::returnTo(const fs::path& folder) {
  auto page = folderPages_.extract(folder.string());
  if (page.empty()) return false;
  page_ = std::move(page.mapped());
  loader_.restore(std::exchange(page_.backlog, {}));
  refreshWatchedBits();
  return true;
}

void Posters::takePendingPosters(SDL_Renderer* renderer, int height, int count) {
  if (renderer == nullptr || height < 1) return;
  for (; count > 0; --count) {
    std::optional<PendingPoster> pending = loader_.takePending();
    if (!pending) break;
    if (Poster poster = made(renderer, std::move(*pending), height); poster.texture) add(std::move(poster));
  }
  if (loader_.pendingCount() == 0 || page_.posters.size() >= posterTarget) page_.ready = true;
}

Poster Posters::made(SDL_Renderer* renderer, PendingPoster pending, int height) const {
  Poster poster;
  poster.path = std::move(pending.poster.path);
  poster.media = std::move(pending.poster.media);
  poster.key = std::move(pending.poster.key);
  poster.image = std::move(pending.image);
  if (!pending.surface) return poster;
  poster.texture.reset(SDL_CreateTextureFromSurface(renderer, pending.surface.get()));
  poster.watched = Marks(users_, page_.folder).of(poster.path, poster.media);
  poster.width = widthAt(poster.texture.get(), height);
  return poster;
}

void Posters::add(Poster poster) {
  const bool wanted = meetsGoal(poster);
  page_.posters.push_back(std::move(poster));
  if (wanted || page_.selected < 0) select(wanted ? static_cast<int>(page_.posters.size()) - 1 : 0);
}

void Posters::folderChanged(const fs::path& folder) {
  if (folder.empty() || isInside(page_.folder, folder)) changed_ = true;
  if (!folder.empty())
    std::erase_if(folderPages_, [&](const auto& page) { return isInside(page.first, folder); });
}

void Posters::followChange(SDL_Renderer* renderer, int height, int count) {
  if (renderer == nullptr || page_.folder.empty()) return;
  if (changed_ && !listsAgain_ && loader_.finished()) {
    if (loader_.pendingCount() > 0) return takePendingPosters(renderer, height, count);
    return listAgain();
  }
  if (!listsAgain_) return;
  const bool finished = again_.finished();
  while (count > 0) {
    std::optional<PendingPoster> pending = again_.takePending();
    if (!pending) break;
    const bool isNew = pending->surface != nullptr;
    if (isNew) --count;
    Poster poster = made(renderer, std::move(*pending), height);
    if (!isNew || poster.texture) next_.push_back(std::move(poster));
  }
  if (finished && again_.pendingCount() == 0) takeNewList();
}

void Posters::listAgain() {
  KnownImages known;
  for (const Poster& poster : page_.posters) {
    if (poster.texture) known.emplace(poster.path.string(), poster.image);
  }
  changed_ = false;
  listsAgain_ = true;
  again_.startAgain(page_.folder, std::move(known));
}

void Posters::takeNewList() {
  std::unordered_map<std::string_view, Poster*> old;
  for (Poster& poster : page_.posters) old.emplace(poster.path.native(), &poster);
  for (Poster& poster : next_) {
    if (poster.texture) continue;
    const auto kept = old.find(poster.path.native());
    if (kept == old.end()) continue;
    poster.texture = std::move(kept->second->texture);
    poster.width = kept->second->width;
  }
  const auto selected = static_cast<std::size_t>(page_.selected);
  page_.posters.swap(next_);
  select(selected < next_.size() ? placeOf(next_[selected]) : 0);
  next_.clear();
  listsAgain_ = false;
  loader_.restore({{}, page_.posters.size()});
  refreshWatchedBits();
  for (std::size_t i = 0; i < page_.posters.size(); ++i) {
    if (meetsGoal(page_.posters[i])) select(static_cast<int>(i));
  }
}

/// Where a poster of the old list stands now; where it stood if it is gone.
int Posters::placeOf(const Poster& poster) const {
  const auto first = page_.posters.begin();
  auto found = std::ranges::find(page_.posters, poster.path, &Poster::path);
  if (found == page_.posters.end() && !poster.media.empty())
    found = std::ranges::find(page_.posters, poster.media, &Poster::media);
  if (found != page_.posters.end()) return static_cast<int>(found - first);
  const int byName = findKey(poster.key);
  return byName >= 0 ? byName : page_.selected;
}

void Posters::refreshWatchedBits() {
  Marks marks(users_, page_.folder);
  for (Poster& poster : page_.posters) poster.watched = marks.of(poster.path, poster.media);
}

void Posters::clear() {
  loader_.stop();
  again_.stop();
  next_.clear();
  page_ = {};
  folderPages_.clear();
}

std::size_t Posters::stripScroll() const {
  return stripScrollFor(page_.selected, page_.posters.size());
}

void Posters::selectPoster(int index) {
  goal_ = {};
  select(index);
}

void Posters::select(int index) {
  const int count = static_cast<int>(page_.posters.size());
  page_.selected = count > 0 ? std::clamp(index, 0, count - 1) : -1;
}

void Posters::clearSelection() {
  goal_ = {};
  page_.selected = -1;
}

void Posters::waitForTitle(std::string title) {
  goal_ = {};
  goal_.waitingKey = std::move(title);
}

void Posters::selectPosterFor(const fs::path& media) {
  goal_ = {};
  if (media.empty()) return;
  const auto series = seriesFolderOf(media);
  const bool bySeries = series && (seriesRoom() || seriesDepth(page_.folder) == 0);
  goal_.media = media.string();
  goal_.selectionKey = matchKeyOf(bySeries ? folderTile(*series) : media);
  goal_.waitingKey = goal_.selectionKey.raw;
  int found = findMedia(media);
  if (found >= 0) return selectPoster(found);

  found = findKey(goal_.selectionKey);
  if (found < 0) {
    const std::string title = posterTitleKey(media.parent_path());
    found = findKey(makeMatchKey(title));
    if (found < 0 && !title.empty()) goal_.waitingKey = title;
  }
  if (found < 0) return;
  const MatchKey& key = page_.posters[static_cast<std::size_t>(found)].key;
  goal_.found = std::max(matchKeys(key, goal_.selectionKey), KeyMatch::Generous);
  select(found);
}

bool Posters::meetsGoal(const Poster& poster) {
  if (goal_.waitingKey.empty()) return false;
  if (!goal_.media.empty() && poster.media == goal_.media) {
    goal_ = {};
    return true;
  }
  const KeyMatch match = goal_.selectionKey.raw.empty()
                             ? (poster.key.raw == goal_.waitingKey ? KeyMatch::Exact : KeyMatch::None)
                             : matchKeys(poster.key, goal_.selectionKey);
  if (match <= goal_.found) return false;
  goal_.found = match;
  return true;
}

std::vector<PosterTitle> Posters::titles() {
  std::vector<PosterTitle> titles;
  for (const Poster& poster : page_.posters) titles.push_back({poster.key.raw, poster.path.string()});
  for (const PendingPoster& pending : loader_.pending())
    titles.push_back({pending.poster.key.raw, pending.poster.path});
  return titles;
}

bool Posters::seriesRoom() const {
  return seriesRootOf(page_.folder).has_value();
}

/// One file may be known under two paths, through a linked folder for instance; its name is then the same,
/// and only such pairs are worth a question to the disk.
int Posters::findMedia(const fs::path& media) const {
  const std::string text = media.string();
  const std::string name = media.filename().string();
  const auto first = page_.posters.begin();
  const auto indexOf = [&](auto found) {
    return found == page_.posters.end() ? -1 : static_cast<int>(found - first);
  };
  const int equal = indexOf(std::ranges::find(page_.posters, text, &Poster::media));
  if (equal >= 0) return equal;
  return indexOf(std::ranges::find_if(page_.posters, [&](const Poster& poster) {
    return poster.media.ends_with(name) && sameFile(poster.media, media);
  }));
}

int Posters::findKey(const MatchKey& key) const {
  if (key.raw.empty()) return -1;
  // The name itself goes before one that it only begins.
  for (const KeyMatch wanted : {KeyMatch::Exact, KeyMatch::Generous}) {
    const auto found = std::ranges::find_if(
        page_.posters, [&](const Poster& poster) { return matchKeys(poster.key, key) == wanted; });
    if (found != page_.posters.end()) return static_cast<int>(found - page_.posters.begin());
  }
  return -1;
}

bool Posters::selectPosterByVoice(std::string_view text) {
  const std::string query = normalizeTitle(text);
  if (query.empty()) return false;
  const bool series = seriesRoom();
  const auto found = std::ranges::find_if(page_.posters, [&](const Poster& poster) {
    return matchesQuery(poster.key, poster.path, series, query, false);
  });
  if (found == page_.posters.end()) return false;
  selectPoster(static_cast<int>(found - page_.posters.begin()));
  return true;
}

void Posters::jumpToTyped(std::string_view text) {
  if (text.empty()) return;
  const std::string query = foldCase(text);
  const bool lettersOnly = !isAsciiDigit(query.front());
  const bool series = seriesRoom();
  const auto keyOf = [&](const Poster& poster) {
    return series ? makeMatchKey(shownName(poster.path)) : poster.key;
  };
  auto found = std::ranges::find_if(page_.posters, [&](const Poster& poster) {
    return matchesQuery(keyOf(poster), poster.path, false, query, lettersOnly);
  });
  // Titles of other scripts stand behind the last letter.
  if (found == page_.posters.end() && query == "z") {
    found = std::ranges::find_if(page_.posters, [&](const Poster& poster) {
      const std::string title = keyOf(poster).raw;
      return !title.empty() && letterOf(title) == 0;
    });
  }
  if (found != page_.posters.end()) selectPoster(static_cast<int>(found - page_.posters.begin()));
}

void Posters::dropBadTextures(Uint64 nowMs) {
  if (nowMs < lastTextureCheckAt_ + textureCheckMs) return;
  lastTextureCheckAt_ = nowMs;
  for (Poster& poster : page_.posters) {
    int height = 0;
    if (poster.texture && SDL_QueryTexture(poster.texture.get(), nullptr, nullptr, nullptr, &height) == 0 &&
        height > 0)
      continue;
    poster.texture.reset();
    poster.width = 0;
  }
}

}  // namespace tavek

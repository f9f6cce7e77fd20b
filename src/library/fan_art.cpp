#include "library/fan_art.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "library/file_types.h"
#include "library/folder_walk.h"
#include "library/match_key.h"
#include "library/media_paths.h"
#include "library/titles.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view ending = ".fanart";

bool isPicture(std::string_view extension) {
  return extension == ".jpg" || extension == ".jpeg" || extension == ".png";
}

std::string nameOf(const FileText& file) {
  if (!isPicture(toLower(file.extension()))) return {};
  const std::string stem = toLower(file.stem());
  if (stem == "fanart") return trim(file.folderName());
  if (stem.size() <= ending.size() || !stem.ends_with(ending)) return {};
  return trim(file.stem().substr(0, stem.size() - ending.size()));
}

/// "some film 1982" for "Some Film (1982)" and the like: films and pictures spell one title both ways.
std::string plainTitle(std::string_view title) {
  const TitleYear parts = splitTitleYear(title);
  return parts.year.empty() || parts.title.empty() ? parts.title : parts.title + ' ' + parts.year;
}

/// The name's title, with the year of the folder.
std::string titleOf(std::string_view name, std::string_view folderName) {
  return plainTitle(titleWithYear(foldCase(name), trim(foldCase(folderName))));
}

/// Puts them in the order of their file names, in any case.
template <typename Item, typename PathOf>
void sortByFileName(std::vector<Item>& items, PathOf pathOf) {
  std::vector<std::pair<std::string, Item>> named;
  named.reserve(items.size());
  for (Item& item : items) {
    const std::string& path = pathOf(item);
    std::string name = toLower(std::string_view(path).substr(path.rfind('/') + 1));
    named.emplace_back(std::move(name), std::move(item));
  }
  std::ranges::stable_sort(named, {}, &std::pair<std::string, Item>::first);
  std::ranges::transform(named, items.begin(), [](auto& pair) { return std::move(pair.second); });
}

bool isFilmFile(const FileText& file) {
  return isVideoExtension(toLower(file.extension())) && !isExtra(file.stem());
}

/// What a walk has found: the fan art, and the films that it may belong to.
class Finds {
 public:
  /// `series`: what holds a video counts, with all folders above it.
  Finds(const fs::path& root, bool series) : root_(root.string()), series_(series) {}

  void add(const WalkedEntry& entry) {
    if (entry.isFolder) return;
    FileText file(entry.path);
    if (isFilmFile(file)) {
      if (entry.isRegularFile()) addFilm(file);
    } else if (std::string name = nameOf(file); !name.empty() && entry.isRegularFile()) {
      std::string title = titleOf(name, file.folderName());
      art_.push_back({{file.path(), std::move(name)}, std::move(title)});
    }
  }

  /// The art of what is there.
  std::vector<TitledSlide> slides() {
    std::erase_if(art_, [&](const TitledSlide& art) { return !belongs(art); });
    return std::move(art_);
  }

 private:
  void addFilm(const FileText& file) {
    titles_.insert(titleOf(file.stem(), file.folderName()));
    if (!series_) return;
    std::string folder(file.folder());
    while (folders_.insert(folder).second && folder.size() > root_.size()) folder.resize(folder.rfind('/'));
  }
  bool belongs(const TitledSlide& art) const {
    if (!art.title.empty() && titles_.contains(art.title)) return true;
    return series_ && (folders_.empty() || folders_.contains(std::string(FileText(art.slide.path).folder())));
  }

  const std::string root_;
  const bool series_;
  std::unordered_set<std::string> titles_;
  std::unordered_set<std::string> folders_;
  std::vector<TitledSlide> art_;
};

}  // namespace

std::string fanArtName(const fs::path& file) {
  return nameOf(FileText(file.string()));
}

std::vector<Slide> listSlides(const fs::path& folder, std::vector<PosterTitle> posters, const Flag& stop) {
  learnRoomKind(folder, stop);
  Finds finds(folder, seriesRootOf(folder) && seriesDepth(folder) == 0);
  walkTexts(folder, stop, [&](const WalkedEntry& entry) {
    finds.add(entry);
    return true;
  });
  return orderSlides(finds.slides(), std::move(posters));
}

std::vector<Slide> orderSlides(std::vector<TitledSlide> slides, std::vector<PosterTitle> posters) {
  sortByFileName(slides, [](const TitledSlide& slide) -> const std::string& { return slide.slide.path; });
  sortByFileName(posters, [](const PosterTitle& poster) -> const std::string& { return poster.path; });
  std::unordered_map<std::string_view, std::vector<const TitledSlide*>> byTitle;
  // From the last one on, so that the next unused one stands at the end.
  for (auto slide = slides.rbegin(); slide != slides.rend(); ++slide)
    byTitle[slide->title].push_back(&*slide);

  std::vector<Slide> ordered;
  for (const PosterTitle& poster : posters) {
    const std::string title = plainTitle(poster.title);
    const auto found = byTitle.find(title.empty() ? foldCase(FileText(poster.path).stem()) : title);
    if (found == byTitle.end() || found->second.empty()) continue;
    ordered.push_back(found->second.back()->slide);
    found->second.pop_back();
  }
  if (!ordered.empty()) return ordered;
  for (TitledSlide& slide : slides) ordered.push_back(std::move(slide.slide));
  return ordered;
}

std::optional<fs::path> filmOfSlide(const Slide& slide, const Flag& stop) {
  const FileText picture(slide.path);
  const std::string title = titleOf(slide.name, picture.folderName());
  if (title.empty()) return {};
  const auto isIt = [&](const FileText& file) {
    return isFilmFile(file) && titleOf(file.stem(), file.folderName()) == title;
  };
  std::optional<fs::path> film;
  walkIn(fs::path(picture.folder()), [&](const fs::directory_entry& entry) {
    if (isIt(FileText(entry.path().string())) && isRegularFile(entry)) film = entry.path();
    return !film && !stop;
  });
  if (film) return film;
  walkTexts(fs::path(picture.folder()), stop, [&](const WalkedEntry& entry) {
    if (!entry.isFolder && isIt(FileText(entry.path)) && entry.isRegularFile()) film = entry.path;
    return !film;
  });
  return film;
}

TitleYear splitTitleYear(std::string_view text) {
  const std::string whole = trim(text);
  const std::size_t open = whole.rfind('(');
  if (whole.size() < 7 || !whole.ends_with(')') || open == std::string::npos) return {whole, {}};
  const std::string year = trim(std::string_view(whole).substr(open + 1, whole.size() - open - 2));
  if (year.size() != 4 || !std::ranges::all_of(year, isAsciiDigit)) return {whole, {}};
  return {trim(std::string_view(whole).substr(0, open)), year};
}

}  // namespace tavek

#include "library/film_candidates.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/text.h"
#include "library/file_types.h"
#include "library/match_key.h"
#include "library/media_paths.h"
#include "library/titles.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

struct TreeFile {
  FileText text;
  std::size_t folder;          ///< its index
  std::string normalisedStem;  ///< of a film
};

/// A folder of the walked tree.
struct Folder {
  std::size_t parent = 0;
  std::string name;  ///< trimmed and folded
  bool holdsImages = false;
  bool holdsVideos = false;             ///< at any depth
  std::vector<const TreeFile*> videos;  ///< directly in it
  /// Of all videos below a folder that holds images, by normalised stem: the first one in walk order.
  std::unordered_map<std::string_view, const TreeFile*> videoOf;
};

/// Without a year at its end, unless it is nothing but a year.
std::string titleWithoutYear(std::string_view name) {
  const std::string title = stripYear(name);
  return normalizeTitle(title.empty() ? name : title);
}

/// The images and films below a folder. It has to do for tens of thousands of files: one walk, and then
/// nothing that looks at all files for one of them.
class FilmTree {
 public:
  FilmTree(const fs::path& root, const Flag& stop) {
    walk(root, stop);
    // The root for an image that need not lie there any more.
    folders_.front().holdsImages = true;
    for (const TreeFile& image : images_) folders_[image.folder].holdsImages = true;
    for (const TreeFile& video : videos_) enterVideo(video);
  }
  FilmTree(const FilmTree&) = delete;
  FilmTree& operator=(const FilmTree&) = delete;

  const std::vector<TreeFile>& images() const { return images_; }
  std::vector<fs::path> takeOrders() { return std::move(orders_); }
  bool hasVideos() const { return !videos_.empty(); }
  /// Notes that a title has an image; true once each title has one.
  bool completes(const std::string& title) {
    if (const auto found = titles_.find(title); found != titles_.end() && !std::exchange(found->second, true))
      ++shownTitles_;
    return hasVideos() && shownTitles_ == titles_.size();
  }

  std::string titleOf(const TreeFile& image) const {
    const Folder& folder = folders_[image.folder];
    std::string title = titleOfStem(image.text.stem());
    if (title.empty())
      title = titleOfFolder(image.text.folderName(),
                            folder.videos.empty() ? "" : folder.videos.front()->text.stem());
    return titleWithYear(title, folder.name);
  }

  /// Whether an image of a title is the poster of something.
  bool isPoster(const TreeFile& image, const std::string& title) const {
    if (!hasVideos() || titles_.contains(title)) return true;
    return folders_[image.folder].holdsVideos && isGenericPosterName(toLower(image.text.stem()));
  }

  std::string mediaOf(const TreeFile& image) const {
    return mediaOf(folders_[image.folder], image.text.folderName(), image.text.stem());
  }
  /// For an image directly in the root.
  std::string mediaOf(std::string_view rootName, std::string_view stem) const {
    return mediaOf(folders_.front(), rootName, stem);
  }

 private:
  void walk(const fs::path& root, const Flag& stop) {
    std::vector<std::size_t> open{0};  // from the root down to the folder that the walk is in
    walkTexts(root, stop, [&](const WalkedEntry& entry) {
      open.resize(entry.depth + 1);
      if (entry.isFolder) {
        folders_.emplace_back().parent = open.back();
        open.push_back(folders_.size() - 1);
      } else {
        addFile(entry, open.back());
      }
      return true;
    });
  }

  void addFile(const WalkedEntry& entry, std::size_t folder) {
    FileText file(entry.path);
    const std::string extension = toLower(file.extension());
    const bool image = extension == ".jpg" || extension == ".jpeg" || extension == ".png";
    const bool film = isVideoExtension(extension) && !isExtra(file.stem());
    if (file.name() == orderFileName && entry.isRegularFile()) orders_.emplace_back(entry.path);
    if ((!image && !film) || !entry.isRegularFile()) return;
    std::vector<TreeFile>& files = image ? images_ : videos_;
    const FileText& text = files.emplace_back(TreeFile{std::move(file), folder, {}}).text;
    if (folders_[folder].name.empty()) folders_[folder].name = trim(foldCase(text.folderName()));
    if (!image) files.back().normalisedStem = normalizeTitle(text.stem());
  }

  /// Once all files have their places, since texts are kept by reference here.
  void enterVideo(const TreeFile& video) {
    Folder& folder = folders_[video.folder];
    titles_.try_emplace(titleWithYear(foldCase(video.text.stem()), folder.name), false);
    folder.videos.push_back(&video);
    for (std::size_t above = video.folder;; above = folders_[above].parent) {
      folders_[above].holdsVideos = true;
      if (folders_[above].holdsImages) {
        folders_[above].videoOf.try_emplace(video.normalisedStem, &video);
      }
      if (above == 0) break;
    }
  }

  static std::string mediaOf(const Folder& folder, std::string_view folderName, std::string_view stem) {
    const std::string key = posterKeyOf(folderName, stem);
    const auto named = key.empty() ? folder.videoOf.end() : folder.videoOf.find(key);
    if (named != folder.videoOf.end()) return named->second->text.path();
    const TreeFile* own = standsForFolder(stem) ? ownVideoOf(folder, folderName) : nullptr;
    return own != nullptr ? own->text.path() : std::string();
  }

  static const TreeFile* ownVideoOf(const Folder& folder, std::string_view folderName) {
    if (folder.videos.size() == 1) return folder.videos.front();
    const auto titled =
        std::ranges::find_if(folder.videos, [title = titleWithoutYear(folderName)](const TreeFile* video) {
          return titleWithoutYear(video->text.stem()) == title;
        });
    return titled != folder.videos.end() ? *titled : nullptr;
  }

  std::vector<Folder> folders_{1};  // the root stands first
  std::vector<TreeFile> images_;
  std::vector<TreeFile> videos_;
  std::vector<fs::path> orders_;
  std::unordered_map<std::string, bool> titles_;  ///< of the films; true for one that has an image
  std::size_t shownTitles_ = 0;
};

bool isFanArt(std::string_view stem) {
  const std::string lower = toLower(stem);
  return lower == "fanart" || lower.ends_with(".fanart");
}

}  // namespace

PosterCandidate::PosterCandidate(FileText listed, std::string titleKey, std::string plays)
    : file(std::move(listed)),
      title(std::move(titleKey)),
      media(std::move(plays)),
      name(foldCase(file.name())) {}

PosterCandidates filmCandidates(const fs::path& folder, const Flag& stop) {
  FilmTree tree(folder, stop);
  std::vector<PosterCandidate> films;
  for (const TreeFile& image : tree.images()) {
    if (stop) break;
    if (isFanArt(image.text.stem())) continue;
    std::string title = tree.titleOf(image);
    if (!tree.isPoster(image, title)) continue;
    const bool last = tree.completes(title);
    films.emplace_back(image.text, std::move(title), tree.mediaOf(image));
    if (last) break;
  }
  return {std::move(films), tree.takeOrders()};
}

std::optional<fs::path> findVideoForPoster(const fs::path& poster, const fs::path& limit, const Flag& stop) {
  const fs::path folder = poster.parent_path();
  if (!limit.empty() && !isInside(folder, limit)) return {};
  const FilmTree tree(folder, stop);
  const std::string film = tree.mediaOf(folder.filename().string(), poster.stem().string());
  return film.empty() || stop ? std::nullopt : std::optional<fs::path>(film);
}

}  // namespace tavek

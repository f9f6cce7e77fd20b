#include "library/film_candidates.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "library/file_types.h"
#include "library/match_key.h"
#include "library/titles.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// A folder of the walked tree.
struct Folder {
  std::size_t parent = 0;
  std::string name;  ///< trimmed and folded
  bool holdsImages = false;
  bool holdsVideos = false;         ///< at any depth
  std::string_view firstVideoStem;  ///< of the videos directly in it
  /// Of all videos below a folder that holds images, by normalised stem: the first one in walk order.
  std::unordered_map<std::string_view, const std::string*> videoOf;
};

struct TreeFile {
  FileText text;
  std::size_t folder;          ///< its index
  std::string normalisedStem;  ///< of a video
};

/// The images and videos below a folder. It has to do for tens of thousands of files: one walk, and then
/// nothing that looks at all files for one of them.
class FilmTree {
 public:
  FilmTree(const fs::path& root, const Flag& stop) {
    walk(root, stop);
    for (const TreeFile& image : images_) folders_[image.folder].holdsImages = true;
    for (const TreeFile& video : videos_) enterVideo(video);
  }
  FilmTree(const FilmTree&) = delete;
  FilmTree& operator=(const FilmTree&) = delete;

  const std::vector<TreeFile>& images() const { return images_; }
  bool hasVideos() const { return !videos_.empty(); }
  /// How many different titles the videos have.
  std::size_t titleCount() const { return titles_.size(); }

  std::string titleOf(const TreeFile& image) const {
    const Folder& folder = folders_[image.folder];
    std::string title = titleOfStem(image.text.stem());
    if (title.empty()) title = titleOfFolder(image.text.folderName(), folder.firstVideoStem);
    return titleWithYear(title, folder.name);
  }

  /// Whether an image of a title is the poster of something.
  bool isPoster(const TreeFile& image, const std::string& title) const {
    if (!hasVideos() || titles_.contains(title)) return true;
    return folders_[image.folder].holdsVideos && isGenericPosterName(toLower(image.text.stem()));
  }

  std::string mediaOf(const TreeFile& image) const {
    const std::string key = posterKeyOf(image.text.folderName(), image.text.stem());
    const auto& videoOf = folders_[image.folder].videoOf;
    const auto video = key.empty() ? videoOf.end() : videoOf.find(key);
    return video != videoOf.end() ? *video->second : std::string();
  }

 private:
  void walk(const fs::path& root, const Flag& stop) {
    std::vector<std::size_t> open{0};  // from the root down to the folder that the walk is in
    walkTexts(root, [&](const WalkedEntry& entry) {
      open.resize(entry.depth + 1);
      if (entry.isFolder) {
        folders_.emplace_back().parent = open.back();
        open.push_back(folders_.size() - 1);
      } else {
        addFile(entry, open.back());
      }
      return !stop;
    });
  }

  void addFile(const WalkedEntry& entry, std::size_t folder) {
    FileText file(entry.path);
    const std::string extension = toLower(file.extension());
    const bool image = extension == ".jpg" || extension == ".jpeg" || extension == ".png";
    if ((!image && !isVideoExtension(extension)) || !entry.isRegularFile()) return;
    std::vector<TreeFile>& files = image ? images_ : videos_;
    const FileText& text = files.emplace_back(TreeFile{std::move(file), folder, {}}).text;
    if (folders_[folder].name.empty()) folders_[folder].name = trim(foldCase(text.folderName()));
    if (!image) files.back().normalisedStem = normalizeTitle(text.stem());
  }

  /// Once all files have their places, since texts are kept by reference here.
  void enterVideo(const TreeFile& video) {
    Folder& folder = folders_[video.folder];
    titles_.insert(titleWithYear(foldCase(video.text.stem()), folder.name));
    if (folder.firstVideoStem.empty()) folder.firstVideoStem = video.text.stem();
    for (std::size_t above = video.folder;; above = folders_[above].parent) {
      folders_[above].holdsVideos = true;
      if (folders_[above].holdsImages) {
        folders_[above].videoOf.try_emplace(video.normalisedStem, &video.text.path());
      }
      if (above == 0) break;
    }
  }

  std::vector<Folder> folders_{1};  // the root stands first
  std::vector<TreeFile> images_;
  std::vector<TreeFile> videos_;
  std::unordered_set<std::string> titles_;
};

bool isFanArt(std::string_view stem) {
  const std::string lower = toLower(stem);
  return lower == "fanart" || lower.ends_with(".fanart");
}

}  // namespace

std::vector<PosterCandidate> filmCandidates(const fs::path& folder, const Flag& stop) {
  const FilmTree tree(folder, stop);
  std::vector<PosterCandidate> films;
  for (const TreeFile& image : tree.images()) {
    if (stop) break;
    if (isFanArt(image.text.stem())) continue;
    std::string title = tree.titleOf(image);
    if (!tree.isPoster(image, title)) continue;
    films.emplace_back(image.text, std::move(title)).media = tree.mediaOf(image);
    // There can't be more posters than titles.
    if (tree.hasVideos() && films.size() == tree.titleCount()) break;
  }
  return films;
}

}  // namespace tavek

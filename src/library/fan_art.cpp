#include "library/fan_art.h"

#include <algorithm>
#include <deque>
#include <string_view>
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

constexpr std::string_view suffix = ".fanart";

/// "some film 1982" for "some film (1982)" too: the fan art of a folder has the folder's brackets, and its
/// film may have none.
std::string plainTitle(std::string_view title) {
  std::string plain = trim(title);
  const std::size_t open = plain.rfind('(');
  if (open == std::string::npos || open == 0 || !plain.ends_with(')')) return plain;
  const std::string year = trim(std::string_view(plain).substr(open + 1, plain.size() - open - 2));
  return isYear(year) ? trim(std::string_view(plain).substr(0, open)) + ' ' + year : plain;
}

std::string keyOf(std::string_view name, std::string_view folderName) {
  return plainTitle(titleWithYear(foldCase(name), trim(foldCase(folderName))));
}

std::string nameFrom(std::string_view stem, std::string_view folderName) {
  const std::string lower = toLower(stem);
  if (lower == "fanart") return trim(folderName);
  if (lower.size() <= suffix.size() || !lower.ends_with(suffix)) return {};
  return trim(stem.substr(0, stem.size() - suffix.size()));
}

bool isPicture(std::string_view extension) {
  const std::string lower = toLower(extension);
  return lower == ".jpg" || lower == ".jpeg" || lower == ".png";
}

/// What one walk finds.
struct Found {
  struct Candidate {
    Slide slide;
    std::string key;
    std::string folder;
    std::string fileName;  ///< folded
  };
  std::vector<Candidate> candidates;
  std::unordered_set<std::string> videoTitles;
  std::unordered_set<std::string> videoFolders;  ///< of a room of series, with those above them
};

Found walk(const fs::path& folder, bool series, const Flag& stop) {
  Found found;
  walkTexts(folder, stop, [&](const WalkedEntry& entry) {
    if (entry.isFolder) return true;
    const FileText file(entry.path);
    if (isVideoExtension(toLower(file.extension()))) {
      if (!entry.isRegularFile()) return true;
      if (std::string key = keyOf(file.stem(), file.folderName()); !key.empty())
        found.videoTitles.insert(std::move(key));
      std::string above(file.folder());
      while (series && above.size() >= folder.native().size() && found.videoFolders.insert(above).second)
        above = fs::path(above).parent_path().string();
      return true;
    }
    std::string name = isPicture(file.extension()) ? nameFrom(file.stem(), file.folderName()) : "";
    if (name.empty() || !entry.isRegularFile()) return true;
    std::string key = keyOf(name, file.folderName());
    found.candidates.push_back(
        {{file.path(), std::move(name)}, std::move(key), std::string(file.folder()), foldCase(file.name())});
    return true;
  });
  return found;
}

/// Each poster, in the order of their file names, takes the next slide of its title.
std::vector<Slide> byPosters(std::vector<Found::Candidate>& slides, const std::vector<PosterTitle>& posters) {
  std::unordered_map<std::string, std::deque<Found::Candidate*>> groups;
  for (Found::Candidate& slide : slides) groups[slide.key].push_back(&slide);
  std::vector<std::pair<std::string, std::string>> order;  // by the file's name, the title
  for (const PosterTitle& poster : posters) {
    const fs::path path(poster.path);
    std::string title = plainTitle(poster.title);
    if (title.empty()) title = foldCase(path.stem().string());
    order.emplace_back(foldCase(path.filename().string()), std::move(title));
  }
  std::ranges::stable_sort(order, {}, &std::pair<std::string, std::string>::first);
  std::vector<Slide> result;
  for (const auto& [name, title] : order) {
    const auto group = groups.find(title);
    if (group == groups.end() || group->second.empty()) continue;
    result.push_back(std::move(group->second.front()->slide));
    group->second.pop_front();
  }
  return result;
}

}  // namespace

std::string slideNameOf(const fs::path& image) {
  if (!isPicture(image.extension().string())) return {};
  return nameFrom(image.stem().string(), image.parent_path().filename().string());
}

std::vector<Slide> listSlides(const fs::path& folder, const std::vector<PosterTitle>& posters,
                              const Flag& stop) {
  learnRoomKind(folder, stop);
  const bool series = seriesRootOf(folder).has_value() && seriesDepth(folder) == 0;
  Found found = walk(folder, series, stop);
  std::erase_if(found.candidates, [&](const Found::Candidate& slide) {
    const bool film = !slide.key.empty() && found.videoTitles.contains(slide.key);
    const bool show = series && (found.videoFolders.empty() || found.videoFolders.contains(slide.folder));
    return !film && !show;
  });
  std::ranges::sort(found.candidates, {},
                    [](const auto& slide) { return std::string_view(slide.slide.path.native()); });
  std::ranges::stable_sort(found.candidates, {}, &Found::Candidate::fileName);
  std::vector<Slide> slides = byPosters(found.candidates, posters);
  if (!slides.empty()) return slides;
  for (Found::Candidate& slide : found.candidates) slides.push_back(std::move(slide.slide));
  return slides;
}

std::optional<fs::path> videoOfSlide(const Slide& slide, const Flag& stop) {
  const fs::path folder = slide.path.parent_path();
  const std::string key = keyOf(slide.name, folder.filename().string());
  if (key.empty()) return {};
  std::optional<fs::path> beside;
  std::optional<fs::path> below;
  walkTexts(folder, stop, [&](const WalkedEntry& entry) {
    if (entry.isFolder) return true;
    const FileText file(entry.path);
    if (!isVideoExtension(toLower(file.extension())) || !entry.isRegularFile()) return true;
    if (keyOf(file.stem(), file.folderName()) != key) return true;
    std::optional<fs::path>& place = entry.depth == 0 ? beside : below;
    if (!place) place = file.path();
    return !beside;
  });
  return beside ? beside : below;
}

}  // namespace tavek

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

/// What lies in the folders that are tidied, read from the disk without following a link.
namespace tavek {

/// What lies directly in a folder, without what is hidden.
struct FolderContent {
  std::set<std::string> files;       ///< plain ones
  std::vector<std::string> folders;  ///< real ones
};
FolderContent contentOf(const std::filesystem::path& folder);

/// Keeps what was read last: thousands of films may lie in one folder, and as many episodes. Read again once
/// somebody else has changed the folder.
class FolderReader {
 public:
  const FolderContent& read(const std::filesystem::path& folder);
  /// This program has moved a file, out of the folder, into it or within it.
  void noteRename(const std::filesystem::path& old, const std::filesystem::path& now);

 private:
  std::filesystem::path folder_;
  std::int64_t changedNs_ = 0;
  FolderContent content_;
};

/// A video that is no extra, no sound track and no subtitle, by its name.
bool isFilmName(const std::filesystem::path& name);
/// True if there is something under this name, be it a link to nowhere.
bool isTaken(const std::filesystem::path& path);
/// A plain file or a real folder to which no link leads on its way from the room.
bool isReallyInside(const std::filesystem::path& room, const std::filesystem::path& path);

/// What belongs to the video and lies beside it: endings of names behind the video's stem. What goes better
/// with another video of the folder is not among it.
std::vector<std::string> companionEndings(const FolderContent& content, const std::filesystem::path& video);
/// Of all films of the folder this one is to be named: it is the largest, and no part of several. With
/// `onlyNamesakes`, the largest of those with the same stem.
bool isChosen(const FolderContent& content, const std::filesystem::path& video, bool onlyNamesakes);

/// The folder has a film of its own: nothing in it or below it is another film.
bool isOwnFolder(const std::filesystem::path& folder, const std::filesystem::path& video,
                 const std::string& wantedStem);
/// True if the test holds for a file below the folder.
bool anyBelow(const std::filesystem::path& folder,
              const std::function<bool(const std::filesystem::path&)>& test);

}  // namespace tavek

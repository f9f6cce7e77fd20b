#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// What lies in the folders that are tidied, read from the disk without following a link.
namespace tavek {

/// What lies directly in a folder, without what is hidden.
struct FolderContent {
  std::vector<std::string> files;    ///< plain ones
  std::vector<std::string> folders;  ///< real ones
  bool links = false;                ///< there are links, too
};
FolderContent contentOf(const std::filesystem::path& folder);

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

#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/process_flags.h"
#include "library/media_kind.h"

/// What a path of the library is. The top-level folders of mediaRoot() are the rooms; a series room holds
/// series folders, and those hold season folders. All but classifyFolder, learnRoomKind and listRoots look at
/// the path's lexically normal text alone, and at what is known of the kind of its room. Every function may
/// be called from every thread.
namespace tavek {

/// Told by the folder's name, or by what lies in it if the name says nothing. The answer is kept for the life
/// of the process, so that asking again does not touch the disk. A walk that `stop` ends tells Movies, and
/// that is not kept.
MediaKind classifyFolder(const std::filesystem::path& path, const Flag& stop);
/// The same without a walk: none for a folder that only a walk can tell, and that none has told yet.
std::optional<MediaKind> knownKind(const std::filesystem::path& path);
/// classifyFolder for the room of a path: a worker's first step, where a room may be one that nobody has
/// looked at yet.
void learnRoomKind(const std::filesystem::path& path, const Flag& stop);
/// The rooms in the byte order of their names, without hidden ones. Four fixed rooms, which need not exist,
/// where there is none.
std::vector<std::filesystem::path> listRoots(const Flag& stop);

/// True also for the root itself, false for an empty root.
bool isInside(const std::filesystem::path& path, const std::filesystem::path& root);
/// Where a path is after its folder `old` has become `now`; none for one that does not lie in it.
std::optional<std::string> inMovedFolder(std::string_view path, std::string_view old, std::string_view now);
/// The room that a path lies in; none for the library itself.
std::optional<std::filesystem::path> roomRootOf(const std::filesystem::path& path);
/// The same, if that room is known to show series.
std::optional<std::filesystem::path> seriesRootOf(const std::filesystem::path& path);
/// 0 outside the series rooms and for such a room itself, 1 for a series folder, 2 or more in a season
/// folder.
int seriesDepth(const std::filesystem::path& path);
/// The series folder that a path lies below.
std::optional<std::filesystem::path> seriesFolderOf(const std::filesystem::path& path);
/// The tile of a series or a season, which need not exist. A folder's own name may have a dot, "Mr. Robot".
inline std::filesystem::path folderTile(const std::filesystem::path& folder) {
  return folder / "poster.jpg";
}

/// The name under which the state files know a room, in spite of its folder's spelling.
std::string normalizeRoomName(std::string_view text);
/// The lower-cased folder name; "movies" for a path without one.
std::string roomNameOfRoot(const std::filesystem::path& path);
/// The room of a media file, whose path may be relative to the library; "movies" outside of it.
std::string roomNameOfMedia(std::string_view text);
/// The lower-cased file name, or the fallback in lower case for a path without one.
std::string roomLabelOf(const std::filesystem::path& path, std::string_view fallback);

}  // namespace tavek

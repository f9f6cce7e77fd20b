#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

#include "base/process_flags.h"
#include "scan/film_folder.h"
#include "scan/rename_log.h"
#include "state/stored.h"

/// Gives the user's films and episodes their names and films their folders. Nothing is ever overwritten or
/// deleted: where a name is taken, or anything else is in the way, the file stays where it is. Each rename is
/// in the room's log before it is done, and what is remembered about the media follows it. All of this reads
/// and writes the disk, so it belongs on a worker's thread, and for one room on one at a time.
namespace tavek {

/// What one scan hands over, once for all of its rooms.
struct TidyContext {
  Stored stored;
  const Flag& stop;
  std::function<bool(const std::filesystem::path&)> busy = {};  ///< plays just now
  std::int64_t scanTime = 0;                                    ///< its start, seconds since 1970
  std::function<void(const std::string&)> log = {};             ///< takes a line without its end
  mutable std::map<std::filesystem::path, RenameLog> logs = {};
  mutable FolderReader folders = {};
};

/// The rooms whose films, and whose episodes, get names.
bool isTidiedFilmRoom(const std::filesystem::path& room);
bool isTidiedSeriesRoom(const std::filesystem::path& room);

/// To be called for each room before the first rename of a scan: lets what is remembered follow those renames
/// that a crash or a power cut has kept from being saved. And once more at the end of the scan, when it only
/// waits until all is saved, so that the next scan has nothing to do.
void settleRenames(const TidyContext& context, const std::filesystem::path& room);

/// Gives a film the name and a folder of the same name directly in its room; a folder that is the film's own
/// is renamed with all that lies in it. What belongs to the film moves along. Gives the path that the video
/// has afterwards.
std::filesystem::path tidyFilm(const TidyContext& context, const std::filesystem::path& room,
                               const std::filesystem::path& video, const std::string& wantedStem);
/// Gives an episode the name within its folder, with what belongs to it. Gives the path that it has
/// afterwards.
std::filesystem::path renameEpisodeTo(const TidyContext& context, const std::filesystem::path& room,
                                      const std::filesystem::path& video, const std::string& wantedStem);

}  // namespace tavek

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "base/process_flags.h"
#include "state/stored.h"

namespace tavek {

struct UndoReport {
  bool found = false;  ///< the room has a log
  std::size_t undone = 0;
  std::size_t skipped = 0;
  std::vector<std::string> lines;  ///< what became of each rename, for the user
};

/// Takes the renames of the last scan of a room back, the newest first, and passes over what no longer fits.
/// The next call takes the scan before. What is remembered about the media follows. Belongs on a worker's
/// thread.
UndoReport undoRenames(const std::filesystem::path& room, Stored stored, const Flag& stop);

}  // namespace tavek

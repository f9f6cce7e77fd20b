#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/descriptor.h"

namespace tavek {

/// Where a room keeps what was renamed in it, one line of JSON for each rename.
inline constexpr std::string_view renameLogName = ".tavek-renames.jsonl";

/// A rename of a file or a folder. The paths are relative to the room, bytes as they are on the disk.
struct LoggedRename {
  std::int64_t time = 0;  ///< the start of the scan, seconds since 1970
  std::string old;
  std::string now;
};

/// What the log of a room tells.
struct RenameHistory {
  bool found = false;                 ///< there is a log
  std::vector<LoggedRename> renames;  ///< not taken back yet, in the order in which they were done
  std::size_t settled = 0;            ///< how many of them a later scan has made sure of
  std::set<std::string> takenBack;    ///< the old paths of those that were
};

/// A path that stays below its room, by its text: relative, without "..", and without hidden folders.
bool staysInside(std::string_view path);
/// Reads the log of a room. A line that is cut, too long or not of this program's making, and one that leads
/// out of the room, is passed over.
RenameHistory readRenames(const std::filesystem::path& room);

/// The log of one room, for the thread that renames in it.
class RenameLog {
 public:
  explicit RenameLog(std::filesystem::path room) : room_(std::move(room)) {}

  /// Writes the lines and waits until the disk has them. False, and then nothing may be renamed, if that
  /// fails, or if somebody takes the room's renames back just now.
  bool append(const std::vector<LoggedRename>& renames);
  /// All renames up to here are done, and what is remembered has followed.
  bool markSettled(std::int64_t time);
  /// The renames of this time up to here are taken back.
  bool markUndone(std::int64_t time);
  /// Keeps others from appending for as long as this lives. False if there is no log, or somebody else has
  /// it.
  bool hold();
  /// A film was moved out of this folder, so what lies in it was left there on purpose.
  bool wasLeft(const std::filesystem::path& folder);
  void noteLeft(const std::filesystem::path& folder);
  /// The user has taken a rename of this path back, and wants it to stay.
  bool wasTakenBack(const std::filesystem::path& path);
  /// A rename that is not settled yet has made this name free, or one on the way to it. Taken by another file
  /// now, nobody could tell after a crash which of the two is meant.
  bool wasVacated(const std::filesystem::path& path);

 private:
  struct Known {
    std::set<std::string> left;
    std::set<std::string> takenBack;
    std::set<std::string> vacated;
    std::set<std::string> above;  ///< the folders that these lay in, which may be gone with them
    void vacate(const std::string& old);
  };
  bool write(const std::string& lines);
  Known& known();

  const std::filesystem::path room_;
  Descriptor held_;
  std::optional<Known> known_;  ///< read when it is first asked for
};

}  // namespace tavek

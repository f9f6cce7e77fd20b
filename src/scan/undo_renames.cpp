#include "scan/undo_renames.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <unistd.h>

#include "base/file_write.h"
#include "library/file_types.h"
#include "scan/film_folder.h"
#include "scan/rename_log.h"
#include "scan/tidy_moves.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::seconds longestSave{10};

/// Takes renames back, one after the other.
class Undo {
 public:
  Undo(const fs::path& room, const Stored& stored, UndoReport& report)
      : room_(room), stored_(stored), report_(report) {}

  void take(const LoggedRename& rename) {
    const fs::path now = room_ / rename.now;
    const fs::path old = room_ / rename.old;
    const std::string reason = whyNot(now, old);
    if (!reason.empty()) {
      ++report_.skipped;
      report_.lines.push_back("skipped " + rename.now + ": " + reason);
    } else {
      ++report_.undone;
      report_.lines.push_back(rename.now + " -> " + rename.old);
    }
  }
  /// Something stood in the way that may be gone the next time.
  bool failed() const { return failed_; }

 private:
  /// Empty once it is taken back.
  std::string whyNot(const fs::path& now, const fs::path& old) {
    // An undo that was cut short may have made it anew for the sake of a folder in it.
    if (isTaken(old) && isReallyInside(room_, now)) ::rmdir(now.c_str());
    if (!isTaken(now)) {
      // Taken back already by an undo that was cut short, which may not have saved that.
      if (isTaken(old) && isReallyInside(room_, old)) follow(now, old);
      return "it is no longer there";
    }
    if (!isReallyInside(room_, now)) return "a link is in the way";
    if (isTaken(old)) return "there is another " + old.lexically_relative(room_).string();
    if (!makeFolder(old.parent_path()) || !renameNoReplace(now, old)) {
      failed_ = true;
      return "it cannot be moved";
    }
    follow(now, old);
    return {};
  }

  bool makeFolder(const fs::path& folder) const {
    if (folder == room_) return true;
    std::error_code error;
    if (!isTaken(folder) && !(makeFolder(folder.parent_path()) && fs::create_directory(folder, error)))
      return false;
    return isReallyInside(room_, folder) && fs::is_directory(folder, error);
  }

  void follow(const fs::path& now, const fs::path& old) {
    removeEmpty(room_, now.parent_path());
    std::error_code ignored;
    if (fs::is_directory(old, ignored))
      stored_.users.renameFolder(now, old);
    else if (isVideoFile(old))
      stored_.users.renameMedia(now.string(), old.string());
  }

  const fs::path& room_;
  const Stored& stored_;
  UndoReport& report_;
  bool failed_ = false;
};

}  // namespace

UndoReport undoRenames(const fs::path& room, Stored stored, const Flag& stop) {
  UndoReport report;
  RenameLog log(room);
  report.found = readRenames(room).found;
  if (!report.found) return report;
  if (!log.hold()) {
    report.lines.emplace_back("the files of this room are being renamed just now");
    return report;
  }
  RenameHistory history = readRenames(room);
  if (history.renames.empty()) return report;
  const std::int64_t time = history.renames.back().time;
  std::ranges::reverse(history.renames);
  Undo undo(room, stored, report);
  {
    const auto still = stored.playback.pauseWrites();
    for (const LoggedRename& rename : history.renames) {
      if (stop) return report;
      if (rename.time == time) undo.take(rename);
    }
  }
  // What could not be moved, or saved, is tried again by the next undo.
  if (!undo.failed() && stored.playback.flush(longestSave)) log.markUndone(time);
  return report;
}

}  // namespace tavek

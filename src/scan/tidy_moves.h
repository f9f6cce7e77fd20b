#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "scan/tidy.h"

/// The renames themselves: first logged, then done, then told to what is remembered.
namespace tavek {

/// The renames of one video and of what belongs to it, to be done one after the other.
class TidyMoves {
 public:
  TidyMoves(const TidyContext& context, const std::filesystem::path& room) : context_(context), room_(room) {}

  /// The video goes last, so that one that a crash has left alone is found again with what belongs to it.
  void add(const std::filesystem::path& old, const std::filesystem::path& now);
  /// A folder with all that lies in it. Nothing may be added behind it.
  void addFolder(const std::filesystem::path& old, const std::filesystem::path& now);

  /// Is made before the files are moved, if it is not there.
  void makeFirst(const std::filesystem::path& folder) { made_ = folder; }

  /// False, with everything where it was, if the log does not take them or the last of the files cannot be
  /// moved. Others that cannot be moved stay. A folder that cannot be moved leaves the files renamed in it.
  bool run();
  bool folderMoved() const { return folderMoved_; }

 private:
  struct Move {
    std::filesystem::path old;
    std::filesystem::path now;
  };
  LoggedRename logged(const Move& move, bool back = false) const;
  bool makeFolder() const;
  bool moveFiles();
  void moveBack(std::vector<Move> done);
  void tell(const std::string& line) const;

  const TidyContext& context_;
  const std::filesystem::path& room_;
  std::filesystem::path made_;
  std::vector<Move> files_;
  std::vector<Move> folders_;
  bool folderMoved_ = false;
};

/// The log of the room for this scan.
RenameLog& logOf(const TidyContext& context, const std::filesystem::path& room);
/// Removes the folder and those above it as long as they are empty, but never the room.
void removeEmpty(const std::filesystem::path& room, std::filesystem::path folder);

}  // namespace tavek

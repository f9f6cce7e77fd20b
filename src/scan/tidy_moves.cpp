#include "scan/tidy_moves.h"

#include <algorithm>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "base/file_write.h"
#include "library/file_types.h"
#include "scan/film_folder.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

std::string below(const fs::path& room, const fs::path& path) {
  return path.lexically_relative(room).string();
}

}  // namespace

RenameLog& logOf(const TidyContext& context, const fs::path& room) {
  return context.logs.try_emplace(room, room).first->second;
}

void removeEmpty(const fs::path& room, fs::path folder) {
  while (folder != room && folder.has_relative_path() && ::rmdir(folder.c_str()) == 0)
    folder = folder.parent_path();
}

void TidyMoves::add(const fs::path& old, const fs::path& now) {
  files_.push_back({old, now});
}

void TidyMoves::addFolder(const fs::path& old, const fs::path& now) {
  folders_.push_back({old, now});
}

LoggedRename TidyMoves::logged(const Move& move, bool back) const {
  const std::string old = below(room_, move.old);
  const std::string now = below(room_, move.now);
  return back ? LoggedRename{context_.scanTime, now, old} : LoggedRename{context_.scanTime, old, now};
}

void TidyMoves::tell(const std::string& line) const {
  if (context_.log) context_.log(line);
}

bool TidyMoves::run() {
  std::vector<LoggedRename> lines;
  for (const Move& move : files_) lines.push_back(logged(move));
  for (const Move& move : folders_) lines.push_back(logged(move));
  if (!logOf(context_, room_).append(lines)) {
    tell("failed to write " + (room_ / renameLogName).string());
    return false;
  }
  if (!makeFolder() || !moveFiles()) return false;
  for (const auto& [old, now] : folders_) {
    folderMoved_ = renameNoReplace(old, now);
    if (folderMoved_)
      context_.stored.users.renameFolder(old, now);
    else
      tell("failed to rename " + old.string() + " -> " + now.string());
  }
  return true;
}

bool TidyMoves::makeFolder() const {
  if (made_.empty() || isTaken(made_)) return true;
  std::error_code error;
  if (fs::create_directory(made_, error)) return true;
  tell("failed to create directory " + made_.string());
  return false;
}

bool TidyMoves::moveFiles() {
  std::vector<Move> done;
  for (const Move& move : files_) {
    if (renameNoReplace(move.old, move.now)) {
      done.push_back(move);
      context_.folders.noteRename(move.old, move.now);
      if (isVideoFile(move.now)) context_.stored.users.renameMedia(move.old.string(), move.now.string());
      continue;
    }
    tell("failed to rename " + move.old.string() + " -> " + move.now.string());
    if (&move != &files_.back()) continue;
    moveBack(std::move(done));
    return false;
  }
  return true;
}

void TidyMoves::moveBack(std::vector<Move> done) {
  std::ranges::reverse(done);
  std::vector<LoggedRename> lines;
  lines.reserve(done.size());
  for (const Move& move : done) lines.push_back(logged(move, true));
  if (lines.empty() || !logOf(context_, room_).append(lines)) return;
  for (const auto& [old, now] : done) {
    if (renameNoReplace(now, old)) context_.folders.noteRename(now, old);
  }
}

}  // namespace tavek

#include "scan/rename_log.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <tuple>
#include <unistd.h>

#include "library/file_types.h"
#include "state/json_read.h"
#include "state/json_write.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t longestPath = 4096;
constexpr std::size_t longestLine = 4 * longestPath;
/// Of a log that is longer only the end is read: a hostile one must not fill the memory.
constexpr std::uintmax_t mostBytes = 64U << 20U;

constexpr std::string_view timeKey = "time";
constexpr std::string_view oldKey = "old";
constexpr std::string_view newKey = "new";
constexpr std::string_view settledKey = "settled";
constexpr std::string_view undoneKey = "undone";

std::string lineOf(const LoggedRename& rename) {
  return compactObject({{std::string(timeKey), std::to_string(rename.time)},
                        {std::string(oldKey), quotedString(rename.old)},
                        {std::string(newKey), quotedString(rename.now)}}) +
         "\n";
}

std::string markOf(std::string_view key, std::int64_t time) {
  return compactObject({{std::string(key), std::to_string(time)}}) + "\n";
}

std::string textOf(const std::vector<JsonMember>& members, std::string_view key) {
  const auto member = std::ranges::find(members, key, &JsonMember::key);
  std::size_t start = 0;
  return member != members.end() ? parseString(member->value, start).value_or("") : "";
}

void takeUndone(RenameHistory& history, std::int64_t time) {
  auto& renames = history.renames;
  const auto end = renames.begin() + static_cast<std::ptrdiff_t>(history.settled);
  history.settled -=
      static_cast<std::size_t>(std::ranges::count(renames.begin(), end, time, &LoggedRename::time));
  std::erase_if(renames, [&](const LoggedRename& rename) {
    if (rename.time == time) history.takenBack.insert(rename.old);
    return rename.time == time;
  });
}

void takeLine(RenameHistory& history, const std::string& line) {
  if (!isWholeJson(line)) return;
  if (const auto undone = readInteger(line, undoneKey)) return takeUndone(history, *undone);
  if (readInteger(line, settledKey)) {
    history.settled = history.renames.size();
    return;
  }
  const auto time = readInteger(line, timeKey);
  const std::vector<JsonMember> members = readMembers(line);
  LoggedRename rename{time.value_or(0), textOf(members, oldKey), textOf(members, newKey)};
  if (time && rename.old != rename.now && staysInside(rename.old) && staysInside(rename.now))
    history.renames.push_back(std::move(rename));
}

/// The next line, up to its end or that of the file. A line that is too long comes empty.
bool nextLine(std::istream& stream, std::string& line) {
  line.clear();
  bool tooLong = false;
  for (int c = stream.get(); c != std::istream::traits_type::eof(); c = stream.get()) {
    if (c == '\n') return true;
    tooLong = tooLong || line.size() == longestLine;
    if (tooLong)
      line.clear();
    else
      line += static_cast<char>(c);
  }
  // Without its end it was cut, and the rename was not done.
  return false;
}

/// A plain file, and no link that leads elsewhere.
Descriptor openLog(const fs::path& room, int flags) {
  Descriptor log(
      ::open((room / renameLogName).c_str(), flags | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666));
  struct stat status {};
  if (!log.isOpen() || ::fstat(log.get(), &status) != 0 || !S_ISREG(status.st_mode)) return Descriptor();
  // A file system without locks has nobody to wait for.
  if (::flock(log.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return Descriptor();
  return log;
}

bool endsInLine(int log, off_t size) {
  char last = '\n';
  return size == 0 || (::pread(log, &last, 1, size - 1) == 1 && last == '\n');
}

void syncFolder(const fs::path& folder) {
  const Descriptor open(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (open.isOpen()) ::fsync(open.get());
}

bool isThere(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(fs::symlink_status(path, ignored));
}

}  // namespace

bool staysInside(std::string_view path) {
  if (path.size() >= longestPath || path.find('\0') != std::string_view::npos) return false;
  for (std::size_t start = 0;;) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    // An empty name is that before the slash of an absolute path, too.
    if (end == start || path[start] == '.') return false;
    if (end == path.size()) return true;
    start = end + 1;
  }
}

RenameHistory readRenames(const fs::path& room) {
  RenameHistory history;
  const fs::path file = room / renameLogName;
  std::error_code error;
  if (!fs::is_regular_file(fs::symlink_status(file, error))) return history;
  history.found = true;
  std::ifstream stream(file, std::ios::binary);
  std::string line;
  const std::uintmax_t size = fs::file_size(file, error);
  if (!error && size > mostBytes) {
    stream.seekg(static_cast<std::streamoff>(size - mostBytes));
    nextLine(stream, line);
  }
  while (nextLine(stream, line)) takeLine(history, line);
  return history;
}

bool RenameLog::append(const std::vector<LoggedRename>& renames) {
  std::string lines;
  for (const LoggedRename& rename : renames) lines += lineOf(rename);
  for (const LoggedRename& rename : renames) known().vacate(rename.old);
  return write(lines);
}

bool RenameLog::markSettled(std::int64_t time) {
  known_.reset();
  return write(markOf(settledKey, time));
}

bool RenameLog::markUndone(std::int64_t time) {
  return write(markOf(undoneKey, time));
}

bool RenameLog::hold() {
  held_ = openLog(room_, O_RDWR);
  return held_.isOpen();
}

bool RenameLog::write(const std::string& lines) {
  const Descriptor opened = held_.isOpen() ? Descriptor() : openLog(room_, O_RDWR | O_CREAT);
  const int log = held_.isOpen() ? held_.get() : opened.get();
  struct stat before {};
  if (log < 0 || ::fstat(log, &before) != 0) return false;
  const std::string bytes = (endsInLine(log, before.st_size) ? "" : "\n") + lines;
  const ssize_t written = ::write(log, bytes.data(), bytes.size());
  if (written == static_cast<ssize_t>(bytes.size()) && ::fdatasync(log) == 0) {
    if (before.st_size == 0) syncFolder(room_);
    return true;
  }
  std::ignore = ::ftruncate(log, before.st_size);
  return false;
}

void RenameLog::Known::vacate(const std::string& old) {
  vacated.insert(old);
  for (fs::path folder = fs::path(old).parent_path(); !folder.empty(); folder = folder.parent_path())
    above.insert(folder.string());
}

RenameLog::Known& RenameLog::known() {
  if (known_) return *known_;
  known_.emplace();
  RenameHistory history = readRenames(room_);
  known_->takenBack = std::move(history.takenBack);
  for (std::size_t i = 0; i < history.renames.size(); ++i) {
    const LoggedRename& rename = history.renames[i];
    const fs::path from = fs::path(rename.old).parent_path();
    const bool movedOut = from != fs::path(rename.now).parent_path() && isVideoFile(rename.now);
    if (movedOut && !isThere(room_ / rename.old)) known_->left.insert((room_ / from).string());
    if (i >= history.settled) known_->vacate(rename.old);
  }
  return *known_;
}

bool RenameLog::wasLeft(const fs::path& folder) {
  return known().left.contains(folder.string());
}

void RenameLog::noteLeft(const fs::path& folder) {
  known().left.insert(folder.string());
}

bool RenameLog::wasTakenBack(const fs::path& path) {
  return known().takenBack.contains(path.lexically_relative(room_).string());
}

bool RenameLog::wasVacated(const fs::path& path) {
  if (known().above.contains(path.lexically_relative(room_).string())) return true;
  for (fs::path at = path.lexically_relative(room_); !at.empty(); at = at.parent_path()) {
    if (known().vacated.contains(at.string())) return true;
  }
  return false;
}

}  // namespace tavek

#include "state/small_file.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <system_error>
#include <thread>

#include "library/folder_walk.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds lockWait{200};
constexpr std::chrono::minutes leftoverAge{1};

/// A link counts by itself, wherever it leads.
bool nothingIsThere(const fs::path& file) {
  struct stat status {};
  return ::lstat(file.c_str(), &status) != 0 && (errno == ENOENT || errno == ENOTDIR);
}

bool readAll(int descriptor, std::string& text) {
  std::array<char, 16384> buffer{};
  for (;;) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count == 0;
    text.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

}  // namespace

SmallFile readSmallFile(const fs::path& file, const std::optional<FileStamp>& known) {
  const Descriptor in(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (!in.isOpen()) return {nothingIsThere(file) ? FileFound::Missing : FileFound::Unreadable};
  struct stat status {};
  if (::fstat(in.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {FileFound::Unreadable};
  SmallFile read{.found = FileFound::Read,
                 .stamp = {status.st_dev, status.st_ino, status.st_size,
                           std::int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec}};
  if (read.stamp == known) {
    read.found = FileFound::Same;
  } else if (!readAll(in.get(), read.text)) {
    read.found = FileFound::Unreadable;
  }
  return read;
}

FileLock::FileLock(const fs::path& file) : lock_(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
  const auto end = std::chrono::steady_clock::now() + lockWait;
  do {
    held_ = !lock_.isOpen() || ::flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    if (held_) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  } while (std::chrono::steady_clock::now() < end);
}

void removeLeftovers(const fs::path& file) {
  const std::string start = file.filename().string() + ".tmp.";
  walkIn(file.parent_path(), [&](const fs::directory_entry& entry) {
    std::error_code error;
    if (!entry.path().filename().string().starts_with(start)) return true;
    const auto written = entry.last_write_time(error);
    if (!error && fs::file_time_type::clock::now() - written > leftoverAge) fs::remove(entry.path(), error);
    return true;
  });
}

}  // namespace tavek

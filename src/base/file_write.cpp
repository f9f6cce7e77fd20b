#include "base/file_write.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <tuple>
#include <unistd.h>

#include "base/descriptor.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

std::string hexadecimal(std::uint64_t number) {
  std::array<char, 16> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  return {digits.data(), end};
}

/// A name that no other thread and no other call of this one takes.
fs::path temporaryFor(const fs::path& file) {
  const auto thread = std::hash<std::thread::id>{}(std::this_thread::get_id());
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  return file.string() + ".tmp." + hexadecimal(thread) + "." + hexadecimal(static_cast<std::uint64_t>(now));
}

bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// The file stands whole without it, but only with it the new one surely outlives a power cut.
void syncFolder(const fs::path& folder) {
  const Descriptor open(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (open.isOpen()) ::fsync(open.get());
}

enum class Outcome { Done, Failed, NoTemporary };

Outcome writeBesideAndRename(const fs::path& file, std::string_view bytes, std::optional<mode_t> mode) {
  struct stat old {};
  if (!mode && ::stat(file.c_str(), &old) == 0) mode = old.st_mode & 07777;
  const fs::path temporary = temporaryFor(file);
  // Nobody else may look before the permissions are set.
  Descriptor out(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode ? 0600 : 0666));
  if (!out.isOpen()) return errno == ENOSPC || errno == EDQUOT ? Outcome::Failed : Outcome::NoTemporary;
  if (mode) std::ignore = ::fchmod(out.get(), *mode);

  const bool written = writeAll(out.get(), bytes) && ::fsync(out.get()) == 0;
  if (out.close() && written && std::rename(temporary.c_str(), file.c_str()) == 0) {
    syncFolder(file.parent_path());
    return Outcome::Done;
  }
  ::unlink(temporary.c_str());
  return Outcome::Failed;
}

bool writeInPlace(const fs::path& file, std::string_view bytes, std::optional<mode_t> mode) {
  Descriptor out(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, mode.value_or(0666)));
  struct stat old {};
  if (!out.isOpen() || ::fstat(out.get(), &old) != 0) return false;
  if (mode) std::ignore = ::fchmod(out.get(), *mode);
  // Room first: once the old bytes are overwritten there is no way back.
  const auto size = static_cast<off_t>(bytes.size());
  if (size > 0 && ::posix_fallocate(out.get(), 0, size) != 0) {
    std::ignore = ::ftruncate(out.get(), old.st_size);
    return false;
  }
  const bool written = writeAll(out.get(), bytes) && ::ftruncate(out.get(), size) == 0;
  return ::fsync(out.get()) == 0 && out.close() && written;
}

}  // namespace

bool replaceFile(const fs::path& file, std::string_view bytes, std::optional<mode_t> mode) {
  std::error_code error;
  fs::path target = fs::canonical(file, error);  // a link stays one, what it leads to is replaced
  if (error) target = file;
  fs::create_directories(target.parent_path(), error);
  const Outcome outcome = writeBesideAndRename(target, bytes, mode);
  return outcome == Outcome::NoTemporary ? writeInPlace(target, bytes, mode) : outcome == Outcome::Done;
}

bool renameNoReplace(const fs::path& from, const fs::path& to) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
  // A file system that cannot do both at once leaves a moment in which somebody else may make the file.
  std::error_code error;
  if (errno != EINVAL || fs::exists(fs::symlink_status(to, error))) return false;
  return std::rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace tavek

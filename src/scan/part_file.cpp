#include "scan/part_file.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "base/file_write.h"

namespace tavek {
namespace {

constexpr std::size_t headSize = 16;

bool isJpeg(std::string_view head) {
  return head.starts_with("\xff\xd8\xff");
}

bool isPng(std::string_view head) {
  return head.starts_with("\x89PNG\r\n\x1a\n");
}

bool isMp3(std::string_view head) {
  if (head.starts_with("ID3")) return true;
  // The mark of a frame of layer III.
  return head.size() >= 2 && head[0] == '\xff' && (static_cast<unsigned char>(head[1]) & 0xe6) == 0xe2;
}

/// `.poster.jpg.part` for `poster.jpg`.
std::filesystem::path partOf(const std::filesystem::path& goal) {
  return goal.parent_path() / ("." + goal.filename().string() + ".part");
}

}  // namespace

PartFile::PartFile(std::filesystem::path goal) : goal_(std::move(goal)), part_(partOf(goal_)) {
  // One that a kill has left; never through a link that somebody has laid.
  ::unlink(part_.c_str());
  file_ = Descriptor(::open(part_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
}

PartFile::~PartFile() {
  if (isOpen()) ::unlink(part_.c_str());
}

bool PartFile::restart() {
  head_.clear();
  return ::ftruncate(file_.get(), 0) == 0 && ::lseek(file_.get(), 0, SEEK_SET) == 0;
}

bool PartFile::add(std::string_view bytes) {
  if (head_.size() < headSize) head_ += bytes.substr(0, headSize - head_.size());
  while (!bytes.empty()) {
    const ssize_t written = ::write(file_.get(), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool PartFile::is(FileKind kind) const {
  switch (kind) {
    case FileKind::Jpeg:
      return isJpeg(head_);
    case FileKind::Png:
      return isPng(head_);
    case FileKind::Image:
      return isJpeg(head_) || isPng(head_);
    case FileKind::Mp3:
      return isMp3(head_);
  }
  return false;
}

bool PartFile::finish() {
  // Without it a power cut can leave the name with nothing behind it.
  bool whole = ::fdatasync(file_.get()) == 0;
  whole = file_.close() && whole;
  if (whole && renameNoReplace(part_, goal_)) return true;
  ::unlink(part_.c_str());
  return false;
}

}  // namespace tavek

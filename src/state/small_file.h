#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>

#include "base/descriptor.h"

/// Looking at the small files of the state, which may lie on a disk that comes and goes, be links to nowhere,
/// or be no files at all.
namespace tavek {

/// Tells one content of a file from another without reading it.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  std::int64_t modifiedNs = 0;
  bool operator==(const FileStamp&) const = default;
};

enum class FileFound {
  Missing,     ///< there is nothing under this name
  Same,        ///< still that of the known stamp; not read
  Read,        ///< anew
  Unreadable,  ///< there is something, and it must not be replaced: closed, no regular file, a link to
               ///< nowhere
};

struct SmallFile {
  FileFound found = FileFound::Missing;
  FileStamp stamp = {};
  std::string text = {};
};

/// Never waits for a writer at a pipe's other end.
SmallFile readSmallFile(const std::filesystem::path& file, const std::optional<FileStamp>& known = {});

/// Held by whoever writes the state, so that programs side by side lose nothing.
class FileLock {
 public:
  /// Waits for a fifth of a second. Where no lock file can be made there is nothing to wait for.
  explicit FileLock(const std::filesystem::path& file);
  /// False if somebody else has it.
  bool held() const { return held_; }

 private:
  Descriptor lock_;
  bool held_ = false;
};

/// Removes what writers that died have left beside the file: temporary files that are older than a minute.
void removeLeftovers(const std::filesystem::path& file);

}  // namespace tavek

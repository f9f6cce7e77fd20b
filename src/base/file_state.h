#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace tavek {

/// A file as the disk last showed it: the same state is taken for the same bytes.
struct FileState {
  std::filesystem::path path;
  std::filesystem::file_time_type changedAt;
  std::uintmax_t size = 0;
  bool operator==(const FileState&) const = default;
};

/// Of a file that is gone, too: its time and size then stand for none. Reads the disk.
inline FileState fileStateOf(const std::filesystem::path& file) {
  std::error_code ignored;
  return {file, std::filesystem::last_write_time(file, ignored), std::filesystem::file_size(file, ignored)};
}

}  // namespace tavek

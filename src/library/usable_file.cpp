#include "library/usable_file.h"

#include <system_error>

namespace tavek {

bool isUsableFile(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return false;
  const auto size = std::filesystem::file_size(file, error);
  return !error && size > 0;
}

}  // namespace tavek

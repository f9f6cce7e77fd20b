#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tavek::test {

/// A fresh folder that goes away with its owner.
class TempFolder {
 public:
  TempFolder()
      : path_(mkdtemp((std::filesystem::temp_directory_path() / "tavek-test-XXXXXX").string().data())) {}
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tavek::test

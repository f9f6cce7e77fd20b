#pragma once

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/resource.h>

namespace tavek {

namespace fs = std::filesystem;

namespace test {

/// A fresh folder that goes away with its owner.
class TempFolder {
 public:
  TempFolder() : path_(mkdtemp((fs::temp_directory_path() / "tavek-test-XXXXXX").string().data())) {}
  ~TempFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

inline std::string readText(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The folders on its way are made too.
inline void writeText(const fs::path& file, const std::string& text) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << text;
}

/// Does the work while no file may grow beyond so many bytes.
inline void onFullDisk(rlim_t bytes, const auto& work) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  const rlimit full{bytes, old.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  work();
  setrlimit(RLIMIT_FSIZE, &old);
}

}  // namespace test
}  // namespace tavek

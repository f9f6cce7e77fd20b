#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/process_flags.h"

namespace tavek {

/// Calls `visit` for every entry below a folder in the order of the directories, each folder before what it
/// holds, until it returns false or `stop` is set. Links to folders are not followed and closed folders are
/// passed over; any other error ends the walk.
template <typename Visit>  // bool(const std::filesystem::recursive_directory_iterator&)
void walkBelow(const std::filesystem::path& folder, const Flag& stop, Visit visit) {
  std::error_code error;
  std::filesystem::recursive_directory_iterator entry(
      folder, std::filesystem::directory_options::skip_permission_denied, error);
  for (; !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
    if (stop || !visit(entry)) return;
  }
}

/// The same for what lies directly in a folder, until `visit` returns false.
template <typename Visit>  // bool(const std::filesystem::directory_entry&)
void walkIn(const std::filesystem::path& folder, Visit visit) {
  std::error_code error;
  std::filesystem::directory_iterator entry(
      folder, std::filesystem::directory_options::skip_permission_denied, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    if (!visit(*entry)) return;
  }
}

/// What a walk of texts has come to.
struct WalkedEntry {
  const std::string& path;
  std::size_t depth;  ///< 0 directly in the folder that is walked
  bool isFolder;      ///< a link to one counts, but is not followed
  bool isLink;
  bool isFile;  ///< a file as the directory tells; a link may lead to one
  bool isRegularFile() const;
};

/// walkBelow at a third of its cost, for trees of tens of thousands of files.
void walkTexts(const std::filesystem::path& folder, const Flag& stop,
               const std::function<bool(const WalkedEntry&)>& visit);

inline bool isRegularFile(const std::filesystem::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_regular_file(ignored);
}

/// The text of a file's path with its parts at hand, at less cost than a std::filesystem::path. The path has
/// to hold a folder.
class FileText {
 public:
  explicit FileText(std::string path) : path_(std::move(path)), nameAt_(path_.rfind('/') + 1) {}
  const std::string& path() const { return path_; }
  std::string_view folder() const { return view().substr(0, nameAt_ - 1); }
  std::string_view folderName() const { return folder().substr(folder().rfind('/') + 1); }
  std::string_view name() const { return view().substr(nameAt_); }
  std::string_view stem() const {
    const std::size_t dot = name().rfind('.');
    return dot == 0 ? name() : name().substr(0, dot);
  }
  /// With its dot; empty without one.
  std::string_view extension() const { return name().substr(stem().size()); }

 private:
  std::string_view view() const { return path_; }
  std::string path_;
  std::size_t nameAt_;
};

}  // namespace tavek

#pragma once

#include <filesystem>
#include <string>

#include "scan/tidy.h"

namespace tavek {

/// How a scan came out.
enum class ScanResult {
  Done,     ///< also with items that failed
  Skipped,  ///< there was nothing to walk
  NetGone,  ///< it ended for want of a connection
};

/// Brings the films of the film rooms to one shape on the disk, by what the film database knows.
class PosterScanner {
 public:
  PosterScanner(std::string apiKey, std::string bearerToken, std::filesystem::path root)
      : apiKey_(std::move(apiKey)), bearerToken_(std::move(bearerToken)), root_(std::move(root)) {}

  /// One scan on the calling thread: of the library, a room, or with an empty path the default root.
  ScanResult scan(const std::filesystem::path& root, const TidyContext& context) const;

 private:
  const std::string apiKey_;
  const std::string bearerToken_;
  const std::filesystem::path root_;
};

/// What the status line calls a scan of this root.
std::string scanLabelOf(const std::filesystem::path& root);

}  // namespace tavek

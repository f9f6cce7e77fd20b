#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace tavek {

/// The playback.json files beside the media: what is kept about a media file for whoever plays it. Positions
/// and boundaries in microseconds, volumes as gain in dB. A path may be relative to the library where volumes
/// are concerned.
class FolderPlayback {
 public:
  std::optional<std::int64_t> playbackBoundary(const std::string& media);
  void setPlaybackBoundary(const std::string& media, std::int64_t boundary);
  std::optional<double> playbackVolume(const std::string& media);
  void setPlaybackVolume(const std::string& media, double volume);

  // For StoredUsers, whose own place of a media file goes before these.
  std::optional<std::int64_t> position(const std::string& media);
  void setPosition(const std::string& media, std::int64_t position);
  void setWatched(const std::string& media, bool watched);
  void rename(const std::string& old, const std::string& now);

 private:
  std::mutex mutex_;  ///< held while files are read and written
};

}  // namespace tavek

#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

#include "state/playback_files.h"
#include "state/save_thread.h"

namespace tavek {

/// What is kept beside the media about a media file, for whoever plays it. Positions and boundaries in
/// microseconds, volumes as gain in dB. The path of a volume may be relative to the library.
/// The volume is the folder's. The rest is each media file's own, by its name where several share a folder;
/// what stands for the whole folder counts for a media file only if it is the only one there. Where nothing
/// tells that yet, the folder is walked on a thread of its own, and one that takes longer than a fifth of a
/// second is taken to hold others.
class FolderPlayback {
 public:
  FolderPlayback(PlaybackFiles& files, SaveThread& saves) : files_(files), saves_(saves) {}

  std::optional<std::int64_t> playbackBoundary(const std::string& media);
  void setPlaybackBoundary(const std::string& media, std::int64_t boundary);
  std::optional<double> playbackVolume(const std::string& media);
  void setPlaybackVolume(const std::string& media, double volume);

  // For StoredUsers, whose own place of a media file goes before these.
  std::optional<std::int64_t> position(const std::string& media);
  void setPosition(const std::string& media, std::int64_t position);
  void setWatched(const std::string& media, bool watched);
  void rename(const std::string& old, const std::string& now);
  void renameFolder(const std::filesystem::path& old, const std::filesystem::path& now);

  /// To be held by who renames media, until all of it is told: nothing is written beside the media meanwhile.
  std::unique_lock<std::mutex> pauseWrites() { return files_.pause(); }
  /// StateStore's, for a worker that has to know that what it told is saved.
  bool flush(std::chrono::milliseconds limit) { return saves_.flush(limit); }

 private:
  PlaybackFiles::View look(const std::string& media);
  std::optional<std::int64_t> ownOf(const std::string& media, std::optional<std::int64_t> MediaPlace::*byName,
                                    std::optional<std::int64_t> PlaybackFile::*ofFolder);
  void change(PlaybackEdit edit);

  PlaybackFiles& files_;
  SaveThread& saves_;
};

}  // namespace tavek

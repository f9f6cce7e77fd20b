#include "state/folder_playback.h"

#include <filesystem>
#include <system_error>

#include "base/paths.h"
#include "state/playback_file.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// Relative to the library unless it is absolute.
std::string inLibrary(const std::string& media) {
  return (mediaRoot() / media).string();
}

template <typename Change>
void changePlayback(const std::string& media, Change change) {
  const fs::path file = playbackFileOf(media);
  PlaybackFile playback = readPlayback(file);
  change(playback);
  writePlayback(file, playback);
}

}  // namespace

std::optional<std::int64_t> FolderPlayback::playbackBoundary(const std::string& media) {
  if (media.empty()) return {};
  const std::lock_guard lock(mutex_);
  return readPlayback(playbackFileOf(media)).boundary;
}

void FolderPlayback::setPlaybackBoundary(const std::string& media, std::int64_t boundary) {
  if (media.empty() || boundary < 1) return;
  const std::lock_guard lock(mutex_);
  changePlayback(media, [&](PlaybackFile& playback) { playback.boundary = boundary; });
}

std::optional<double> FolderPlayback::playbackVolume(const std::string& media) {
  if (media.empty()) return {};
  const std::lock_guard lock(mutex_);
  return readPlayback(playbackFileOf(inLibrary(media))).volume;
}

void FolderPlayback::setPlaybackVolume(const std::string& media, double volume) {
  if (media.empty()) return;
  const std::lock_guard lock(mutex_);
  changePlayback(inLibrary(media), [&](PlaybackFile& playback) { playback.volume = volume; });
}

std::optional<std::int64_t> FolderPlayback::position(const std::string& media) {
  const std::lock_guard lock(mutex_);
  return readPlayback(playbackFileOf(media)).offset;
}

void FolderPlayback::setPosition(const std::string& media, std::int64_t position) {
  if (position <= 0) return;
  const std::lock_guard lock(mutex_);
  changePlayback(media, [&](PlaybackFile& playback) { playback.offset = position; });
}

void FolderPlayback::setWatched(const std::string& media, bool watched) {
  const std::lock_guard lock(mutex_);
  changePlayback(media, [&](PlaybackFile& playback) { playback.watched = watched; });
}

void FolderPlayback::rename(const std::string& old, const std::string& now) {
  const std::lock_guard lock(mutex_);
  const fs::path from = playbackFileOf(old);
  const fs::path to = playbackFileOf(now);
  std::error_code ignored;
  if (!fs::exists(from, ignored)) return;
  fs::create_directories(to.parent_path(), ignored);
  fs::rename(from, to, ignored);
}

}  // namespace tavek

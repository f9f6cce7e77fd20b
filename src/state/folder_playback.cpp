#include "state/folder_playback.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include "base/background_job.h"
#include "base/paths.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds longestCount{200};

/// Relative to the library unless it is absolute.
std::string inLibrary(const std::string& media) {
  return (mediaRoot() / media).string();
}

bool isShared(const fs::path& folder, const std::string& media) {
  BackgroundJob<bool> count;
  count.start([=](JobSide<bool>& side) { side.post(servesOthers(folder, media, side.stop())); });
  const auto end = std::chrono::steady_clock::now() + longestCount;
  while (std::chrono::steady_clock::now() < end) {
    if (const auto shared = count.take()) return *shared;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace

PlaybackFiles::View FolderPlayback::look(const std::string& media) {
  PlaybackFiles::View view = files_.look(media);
  if (view.damaged) change({.media = media});
  return view;
}

std::optional<std::int64_t> FolderPlayback::ownOf(const std::string& media,
                                                  std::optional<std::int64_t> MediaPlace::*byName,
                                                  std::optional<std::int64_t> PlaybackFile::*ofFolder) {
  if (media.empty()) return {};
  const auto [playback, folder, name, damaged] = look(media);
  const auto place = playback.positions.find(name);
  if (place != playback.positions.end() && place->second.*byName) return place->second.*byName;
  const auto shared = playback.*ofFolder;
  const bool countsForAll = shared && playback.positions.empty() && !isShared(folder, media);
  return countsForAll ? shared : std::nullopt;
}

void FolderPlayback::change(PlaybackEdit edit) {
  if (edit.media.empty()) return;
  files_.add(std::move(edit));
  saves_.request(Save::Always);
}

std::optional<std::int64_t> FolderPlayback::playbackBoundary(const std::string& media) {
  return ownOf(media, &MediaPlace::boundary, &PlaybackFile::boundary);
}

void FolderPlayback::setPlaybackBoundary(const std::string& media, std::int64_t boundary) {
  if (boundary >= 1) change({.media = media, .boundary = boundary});
}

std::optional<double> FolderPlayback::playbackVolume(const std::string& media) {
  return media.empty() ? std::nullopt : look(inLibrary(media)).playback.volume;
}

void FolderPlayback::setPlaybackVolume(const std::string& media, double volume) {
  if (!media.empty()) change({.media = inLibrary(media), .volume = volume});
}

std::optional<std::int64_t> FolderPlayback::position(const std::string& media) {
  return ownOf(media, &MediaPlace::offset, &PlaybackFile::offset);
}

void FolderPlayback::setPosition(const std::string& media, std::int64_t position) {
  change({.media = media, .offset = position});
}

void FolderPlayback::setWatched(const std::string& media, bool watched) {
  change({.media = media, .watched = watched});
}

void FolderPlayback::rename(const std::string& old, const std::string& now) {
  change({.media = old, .renamedTo = now});
}

void FolderPlayback::renameFolder(const fs::path& old, const fs::path& now) {
  files_.renameFolder(old, now);
}

}  // namespace tavek

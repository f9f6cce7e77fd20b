#include <algorithm>
#include <system_error>
#include <utility>

#include "base/paths.h"
#include "library/media_paths.h"
#include "state/playback_file.h"
#include "state/state_store.h"

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

void movePlaybackFile(const std::string& old, const std::string& now) {
  const fs::path from = playbackFileOf(old);
  const fs::path to = playbackFileOf(now);
  std::error_code ignored;
  if (!fs::exists(from, ignored)) return;
  fs::create_directories(to.parent_path(), ignored);
  fs::rename(from, to, ignored);
}

template <typename Values>
void moveEntry(Values& values, const std::string& old, const std::string& now) {
  auto entry = values.extract(old);
  if (entry) values.insert_or_assign(now, std::move(entry.mapped()));
}

}  // namespace

/// Without a copy: tiles by the thousand ask for it.
const RoomState& StateStore::activeRoom(std::string_view room) const {
  static const UserProfile none;
  const auto profile = state_.profiles.find(activeName());
  return roomStateOf(profile != state_.profiles.end() ? profile->second : none, room);
}

template <typename Change>
void StateStore::changeRoom(const std::string& media, const std::string& user, Change change) {
  const std::string name = userOrActive(user);
  UserProfile profile = profileOf(name);
  change(roomStateOf(profile, roomNameOfMedia(media)));
  saveProfile(name, std::move(profile));
}

// --- Per folder ---

std::optional<std::int64_t> StateStore::playbackBoundary(const std::string& media) {
  if (media.empty()) return {};
  const auto lock = enter();
  return readPlayback(playbackFileOf(media)).boundary;
}

void StateStore::setPlaybackBoundary(const std::string& media, std::int64_t boundary) {
  if (media.empty() || boundary < 1) return;
  const auto lock = enter();
  changePlayback(media, [&](PlaybackFile& playback) { playback.boundary = boundary; });
}

std::optional<double> StateStore::playbackVolume(const std::string& media) {
  if (media.empty()) return {};
  const auto lock = enter();
  return readPlayback(playbackFileOf(inLibrary(media))).volume;
}

void StateStore::setPlaybackVolume(const std::string& media, double volume) {
  if (media.empty()) return;
  const auto lock = enter();
  changePlayback(inLibrary(media), [&](PlaybackFile& playback) { playback.volume = volume; });
}

// --- Per user and room ---

std::optional<std::int64_t> StateStore::resumePosition(const std::string& media) {
  if (media.empty()) return {};
  const auto lock = enter();
  const RoomState& room = activeRoom(roomNameOfMedia(media));
  if (room.playing == media && room.seek) return room.seek;
  return readPlayback(playbackFileOf(media)).offset;
}

void StateStore::setPlaying(const std::string& media, const std::string& user) {
  if (media.empty()) return;
  const auto lock = enter();
  changeRoom(media, user, [&](RoomState& room) { room.playing = media; });
}

void StateStore::setPosition(const std::string& media, std::int64_t position, const std::string& user) {
  if (media.empty()) return;
  const auto lock = enter();
  if (position > 0) changePlayback(media, [&](PlaybackFile& playback) { playback.offset = position; });
  changeRoom(media, user, [&](RoomState& room) {
    room.playing = media;
    room.seek = position;
  });
}

void StateStore::clearPlaying(const fs::path& roomFolder) {
  const auto lock = enter();
  const std::string name = activeName();
  if (name.empty()) return;
  UserProfile profile = profileOf(name);
  RoomState& room = roomStateOf(profile, roomNameOfRoot(roomFolder));
  room.playing.reset();
  room.seek.reset();
  saveProfile(name, std::move(profile));
}

bool StateStore::isWatched(const std::string& media) {
  const auto lock = enter();
  return activeRoom(roomNameOfMedia(media)).watched.contains(media);
}

bool StateStore::hasWatchedBelow(const fs::path& folder) {
  if (folder.empty()) return false;
  const auto lock = enter();
  return std::ranges::any_of(activeRoom(roomNameOfMedia(folder.string())).watched,
                             [&](const std::string& media) { return isInside(media, folder); });
}

void StateStore::markWatched(const std::string& media, bool flag, const std::string& user) {
  if (media.empty()) return;
  const auto lock = enter();
  changePlayback(media, [&](PlaybackFile& playback) { playback.watched = flag; });
  changeRoom(media, user, [&](RoomState& room) {
    if (flag) {
      room.watched.insert(media);
    } else {
      room.watched.erase(media);
    }
  });
}

void StateStore::renameMedia(const std::string& old, const std::string& now) {
  if (old.empty() || now.empty() || old == now) return;
  const auto lock = enter();
  movePlaybackFile(old, now);
  moveEntry(scanNotesA_, old, now);
  moveEntry(scanNotesB_, old, now);
  moveEntry(audioParamA_, old, now);
  moveEntry(audioParamB_, old, now);
  moveEntry(frameSizes_, old, now);
  bool changed = false;
  for (auto& [name, profile] : state_.profiles) {
    forEachRoom(profile, [&](std::string_view, RoomState& room) {
      if (room.watched.erase(old) == 0) return;
      room.watched.insert(now);
      changed = true;
    });
  }
  if (changed) write(true);
}

}  // namespace tavek

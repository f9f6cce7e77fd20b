#include "state/stored_users.h"

#include <algorithm>
#include <array>
#include <pwd.h>
#include <unistd.h>
#include <utility>

#include "library/media_paths.h"

namespace tavek {
namespace {

/// Of the process; empty if the system does not know it.
std::string loginName() {
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
  return found != nullptr && found->pw_name != nullptr ? found->pw_name : "";
}

/// None for one who was removed.
std::optional<std::string> userOrActive(const StoredState& state, const std::string& user) {
  std::string name = user.empty() ? activeName(state) : user;
  if (name.empty()) name = loginName();
  if (name.empty()) name = "Alex";
  // An item that was started before a rename still tells the old name.
  for (const auto& [old, now] : state.renamedUsers) {
    if (name == old && !isUser(state, name)) name = now;
  }
  return name.empty() ? std::nullopt : std::optional(name);
}

/// The block of a media file's room; user and block are created where they are missing, but for one who was
/// removed while the file plays: then null.
RoomState* roomOf(StoredState& state, const std::string& user, const std::string& media) {
  const auto name = userOrActive(state, user);
  if (!name) return nullptr;
  if (!isUser(state, *name)) state.userNames.push_back(*name);
  return &roomStateOf(state.profiles[*name], roomNameOfMedia(media));
}

/// True if anything of the block lay in the folder.
bool moveBelow(RoomState& room, const std::string& old, const std::string& now) {
  const auto playing = room.playing ? inMovedFolder(*room.playing, old, now) : std::nullopt;
  if (playing) room.playing = playing;
  bool changed = playing.has_value();
  for (auto seen = room.watched.lower_bound(old + "/"); seen != room.watched.end();) {
    const auto moved = inMovedFolder(*seen, old, now);
    if (!moved) break;
    seen = room.watched.erase(seen);
    room.watched.insert(*moved);
    changed = true;
  }
  return changed;
}

}  // namespace

// --- Users ---

std::vector<std::string> StoredUsers::users() {
  return memory_.look([](const StoredState& state) { return state.userNames; });
}

std::string StoredUsers::activeUser() {
  const std::string name = memory_.look(activeName);
  return name.empty() ? "Alex" : name;
}

void StoredUsers::setActiveUser(const std::string& name) {
  if (name.empty()) return;
  memory_.change(Save::AtRest, [&](StoredState& state) {
    if (!isUser(state, name)) state.userNames.push_back(name);
    state.profiles.try_emplace(name);
    state.activeUser = name;
    return true;
  });
}

void StoredUsers::addUser(const std::string& name) {
  memory_.change(Save::AtRest, [&](StoredState& state) {
    if (name.empty() || isUser(state, name)) return false;
    state.userNames.push_back(name);
    state.profiles.try_emplace(name);
    return true;
  });
}

void StoredUsers::renameUser(const std::string& old, const std::string& now) {
  memory_.change(Save::AtRest, [&](StoredState& state) {
    if (old.empty() || now.empty() || !renameUserIn(state, old, now)) return false;
    state.renamedUsers.emplace_back(old, now);
    return true;
  });
}

void StoredUsers::removeUser(const std::string& name) {
  memory_.change(Save::AtRest, [&](StoredState& state) {
    if (!isUser(state, name)) return false;
    std::erase(state.userNames, name);
    state.profiles.erase(name);
    completeUsers(state);
    if (state.activeUser == name) state.activeUser = state.userNames.front();
    state.renamedUsers.emplace_back(name, "");
    return true;
  });
}

std::optional<std::string> StoredUsers::userMode(const std::string& name) {
  return memory_.look([&](const StoredState& state) -> std::optional<std::string> {
    const auto profile = state.profiles.find(name);
    return profile != state.profiles.end() ? profile->second.mode : std::nullopt;
  });
}

void StoredUsers::setUserMode(const std::string& name, const std::string& mode) {
  memory_.change(Save::AtRest, [&](StoredState& state) {
    const auto profile = state.profiles.find(name);
    if (profile == state.profiles.end()) return false;
    profile->second.mode = mode.empty() ? std::nullopt : std::optional(mode);
    return true;
  });
}

void StoredUsers::ensureRooms(const std::vector<std::filesystem::path>& folders) {
  memory_.change(Save::AtRest, [&](StoredState& state) { return addRooms(state, folders); });
}

// --- What each of them played ---

std::optional<std::int64_t> StoredUsers::resumePosition(const std::string& media) {
  if (media.empty()) return {};
  const auto own = memory_.look([&](const StoredState& state) {
    const RoomState& room = activeRoom(state, roomNameOfMedia(media));
    return room.playing == media ? room.seek : std::nullopt;
  });
  return own ? own : playback_.position(media);
}

void StoredUsers::setPlaying(const std::string& media, const std::string& user) {
  if (media.empty()) return;
  memory_.change(Save::Always, [&](StoredState& state) {
    RoomState* room = roomOf(state, user, media);
    if (room == nullptr) return false;
    // The place was that of another item.
    if (room->playing != media) room->seek = 0;
    room->playing = media;
    return true;
  });
}

void StoredUsers::setPosition(const std::string& media, std::int64_t position, const std::string& user) {
  if (media.empty()) return;
  playback_.setPosition(media, position);
  memory_.change(Save::Always, [&](StoredState& state) {
    RoomState* room = roomOf(state, user, media);
    if (room == nullptr) return false;
    room->playing = media;
    room->seek = position;
    return true;
  });
}

void StoredUsers::clearPlaying(const std::filesystem::path& roomFolder) {
  memory_.change(Save::Always, [&](StoredState& state) {
    const std::string name = activeName(state);
    if (name.empty()) return false;
    RoomState& room = roomStateOf(state.profiles[name], roomNameOfRoot(roomFolder));
    room.playing.reset();
    room.seek.reset();
    return true;
  });
}

void StoredUsers::dropPlaying(const std::string& media, const std::string& user) {
  memory_.change(Save::Always, [&](StoredState& state) {
    RoomState* room = roomOf(state, user, media);
    if (room == nullptr || room->playing != media) return false;
    room->playing.reset();
    room->seek.reset();
    return true;
  });
}

bool StoredUsers::isWatched(const std::string& media) {
  return memory_.look([&](const StoredState& state) {
    return activeRoom(state, roomNameOfMedia(media)).watched.contains(media);
  });
}

bool StoredUsers::hasWatchedBelow(const std::filesystem::path& folder) {
  if (folder.empty()) return false;
  return memory_.look([&](const StoredState& state) {
    return std::ranges::any_of(activeRoom(state, roomNameOfMedia(folder.string())).watched,
                               [&](const std::string& media) { return isInside(media, folder); });
  });
}

void StoredUsers::markWatched(const std::string& media, bool flag, const std::string& user) {
  if (media.empty()) return;
  playback_.setWatched(media, flag);
  memory_.change(Save::Always, [&](StoredState& state) {
    RoomState* room = roomOf(state, user, media);
    if (room == nullptr) return false;
    flag ? void(room->watched.insert(media)) : void(room->watched.erase(media));
    return true;
  });
}

void StoredUsers::renameMedia(const std::string& old, const std::string& now) {
  if (old.empty() || now.empty() || old == now) return;
  playback_.rename(old, now);
  notes_.rename(old, now);
  memory_.change(Save::Always, [&](StoredState& state) {
    bool changed = false;
    for (auto& [name, profile] : state.profiles) {
      forEachRoom(profile, [&](std::string_view, RoomState& room) {
        const bool plays = room.playing == old;
        if (plays) room.playing = now;
        const bool watched = room.watched.erase(old) > 0;
        if (watched) room.watched.insert(now);
        if (plays || watched) changed = true;
      });
    }
    return changed;
  });
}

void StoredUsers::renameFolder(const std::filesystem::path& old, const std::filesystem::path& now) {
  const std::string from = old.string();
  const std::string to = now.string();
  if (from.empty() || to.empty() || from == to) return;
  playback_.renameFolder(old, now);
  notes_.renameFolder(from, to);
  memory_.change(Save::Always, [&](StoredState& state) {
    bool changed = false;
    for (auto& [name, profile] : state.profiles) {
      forEachRoom(profile, [&](std::string_view, RoomState& room) { changed |= moveBelow(room, from, to); });
    }
    return changed;
  });
}

}  // namespace tavek

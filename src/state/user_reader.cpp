#include "state/user_reader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"
#include "library/media_paths.h"
#include "state/json_read.h"

namespace tavek {
namespace {

struct ModeSpelling {
  std::string_view text;
  std::string_view mode;
};
constexpr std::array modeSpellings{
    ModeSpelling{"series", "tv"},
    ModeSpelling{"tvshows", "tv"},
    ModeSpelling{"movie", "movies"},
    ModeSpelling{"videos", "video"},
};

std::optional<std::string> readMode(const std::string& user, bool& changed) {
  const auto text = readFirst(readString, user, {"mode", "Mode"});
  if (!text) return {};
  std::string mode = toLower(*text);
  const auto* spelling = std::ranges::find(modeSpellings, mode, &ModeSpelling::text);
  if (spelling != modeSpellings.end()) mode = spelling->mode;
  if (mode.empty() || mode != *text) changed = true;
  return mode.empty() ? std::nullopt : std::optional(mode);
}

/// The object that is the value of a key which ends at `place`, or none.
std::optional<std::size_t> objectBehindKey(const std::string& text, std::size_t place) {
  const std::size_t colon = skipSpace(text, place);
  if (text.compare(colon, 1, ":") != 0) return {};
  const std::size_t open = skipSpace(text, colon + 1);
  return text.compare(open, 1, "{") == 0 ? std::optional(open) : std::nullopt;
}

void readMainRooms(const std::string& user, UserProfile& profile, bool& changed) {
  const auto read = [&](RoomState& block, std::initializer_list<std::string_view> keys) {
    if (const auto object = readFirst(readObject, user, keys)) block = readRoom(*object, changed);
  };
  read(profile.movies, {"movies"});
  read(profile.tv, {"tv", "series", "tvshows"});
  read(profile.video, {"video", "Video"});
}

/// Every other object in a user's object is a room.
void readOtherRooms(const std::string& user, UserProfile& profile, bool& changed) {
  std::size_t place = 0;
  while ((place = user.find('"', place)) != std::string::npos) {
    const auto key = parseString(user, place);
    if (!key) return;
    const auto open = objectBehindKey(user, place);
    if (!open) continue;
    const auto close = matchBrace(user, *open);
    if (!close) return;
    place = *close + 1;
    if (*key == "mode" || isMainRoom(*key)) continue;
    profile.otherRooms[normalizeRoomName(*key)] = readRoom(user.substr(*open, place - *open), changed);
  }
}

std::vector<JsonMember> readUnknown(const std::string& user) {
  std::vector<JsonMember> members = readMembers(user);
  std::erase_if(members, [](const JsonMember& member) {
    return member.key == "mode" || member.key == "Mode" || member.value.starts_with('{') ||
           isMainRoom(member.key);
  });
  return members;
}

UserProfile readUser(const std::string& user, bool& changed) {
  UserProfile profile;
  profile.mode = readMode(user, changed);
  readMainRooms(user, profile, changed);
  readOtherRooms(user, profile, changed);
  forEachRoom(profile,
              [&](std::string_view name, RoomState& block) { repairRoom(profile, block, name, changed); });
  profile.unknown = readUnknown(user);
  return profile;
}

void dropPlaying(RoomState& block, bool& changed) {
  block.playing.reset();
  block.seek.reset();
  changed = true;
}

}  // namespace

Users readUsers(const std::string& text, bool& changed) {
  Users users;
  auto place = findObjectStart(text, "users");
  if (!place) place = findObjectStart(text, "Users");
  if (!place) return users;
  ++*place;
  for (;;) {
    *place = skipSpace(text, *place);
    if (text.compare(*place, 1, ",") == 0) {
      ++*place;
      continue;
    }
    auto name = parseString(text, *place);
    const auto open = name ? objectBehindKey(text, *place) : std::nullopt;
    const auto close = open ? matchBrace(text, *open) : std::nullopt;
    if (!close) return users;
    *place = *close + 1;
    if (name->empty() || users.profiles.contains(*name)) continue;
    users.profiles[*name] = readUser(text.substr(*open, *place - *open), changed);
    users.names.push_back(std::move(*name));
  }
}

RoomState readRoom(const std::string& object, bool& changed) {
  RoomState room;
  room.playing = readFirst(readString, object, {"playing", "Playing"});
  if (room.playing && room.playing->empty()) {
    room.playing.reset();
    changed = true;
  }
  room.seek = readInteger(object, "seek");
  if (!room.seek) {
    room.seek = readFirst(readInteger, object, {"offset", "offsetUs"});
    if (room.seek) changed = true;
  }
  std::vector<std::string> watched = readStringArray(object, "watched");
  if (watched.empty()) watched = readStringArray(object, "Watched");
  if (std::erase(watched, "") > 0) changed = true;
  room.watched.insert(std::move_iterator(watched.begin()), std::move_iterator(watched.end()));
  if (!room.playing && room.seek) dropPlaying(room, changed);
  return room;
}

void repairRoom(UserProfile& profile, RoomState& block, std::string_view name, bool& changed) {
  if (!block.playing) return;
  const std::string home = normalizeRoomName(roomNameOfMedia(*block.playing));
  if (home == normalizeRoomName(name)) return;
  RoomState& right = roomStateOf(profile, home);
  if (!right.playing) {
    right.playing = block.playing;
    right.seek = block.seek;
  } else if (right.playing == block.playing && !right.seek) {
    right.seek = block.seek;
  }
  dropPlaying(block, changed);
}

}  // namespace tavek

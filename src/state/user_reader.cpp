#include "state/user_reader.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/paths.h"
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

constexpr std::string_view modeKey = "mode";
constexpr std::string_view modeRoomKey = "mode/";

constexpr std::array<std::string_view, 7> roomKeys{"playing",  "Playing", "seek",   "offset",
                                                   "offsetUs", "watched", "Watched"};
constexpr std::array<std::string_view, 8> userKeys{"mode",   "Mode",    "movies", "tv",
                                                   "series", "tvshows", "video",  "Video"};

/// A string; a room can stand under this key too.
std::optional<std::string> readModeText(const std::string& user, std::string_view key) {
  const std::size_t place = findValue(user, key).value_or(user.size());
  return user.compare(place, 1, "\"") == 0 ? readString(user, key) : std::nullopt;
}

std::optional<std::string> readMode(const std::string& user, bool& changed) {
  const auto text = readFirst(readModeText, user, {modeKey, "Mode"});
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

/// The objects in a user's object, of a damaged one as far as they can be found.
std::vector<JsonMember> objectsOf(const std::string& user) {
  std::vector<JsonMember> objects;
  if (isWholeJson(user)) {
    objects = readMembers(user);
    std::erase_if(objects, [](const JsonMember& member) { return !member.value.starts_with('{'); });
    return objects;
  }
  std::size_t place = 0;
  while ((place = user.find('"', place)) != std::string::npos) {
    const std::size_t start = place + 1;
    if (!parseString(user, place)) break;
    const std::size_t end = place - 1;
    const auto open = objectBehindKey(user, place);
    if (!open) continue;
    const auto close = matchBrace(user, *open);
    if (!close) break;
    place = *close + 1;
    objects.push_back({user.substr(start, end - start), user.substr(*open, place - *open)});
  }
  return objects;
}

/// Has what a room has, or nothing at all. What of a damaged one can't be read as members was one.
bool isRoom(const std::string& object) {
  const std::vector<JsonMember> members = readMembers(object);
  return members.empty() || std::ranges::any_of(members, [](const JsonMember& member) {
           return std::ranges::find(roomKeys, member.key) != roomKeys.end();
         });
}

/// Every other object is a room, or nothing that this program knows.
void readOtherRooms(const std::string& user, UserProfile& profile, bool& changed) {
  for (const auto& [key, object] : objectsOf(user)) {
    std::size_t start = 0;
    const std::string name = parseString('"' + key + '"', start).value_or("");
    if (isMainRoom(name)) continue;
    if (!isRoom(object)) {
      profile.unknown.push_back({key, object});
      continue;
    }
    const std::string room = name == modeRoomKey ? std::string(modeKey) : normalizeRoomName(name);
    profile.otherRooms[room] = readRoom(object, changed);
  }
}

UserProfile readUser(const std::string& user, bool& changed) {
  UserProfile profile;
  std::vector<JsonMember> others;
  const std::string known = knownPart(user, userKeys, others);
  profile.mode = readMode(known, changed);
  readMainRooms(known, profile, changed);
  std::erase_if(others, [](const JsonMember& member) {
    return member.value.starts_with('{') || isMainRoom(member.key);
  });
  profile.unknown = std::move(others);
  readOtherRooms(user, profile, changed);
  forEachRoom(profile,
              [&](std::string_view name, RoomState& block) { repairRoom(profile, block, name, changed); });
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

std::string roomKeyOf(std::string_view room) {
  return std::string(room == modeKey ? modeRoomKey : room);
}

RoomState readRoom(const std::string& text, bool& changed) {
  RoomState room;
  const std::string object = knownPart(text, roomKeys, room.unknown);
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
  // Of another library, which may be the right one at the next start.
  if (!isInside(mediaRoot() / *block.playing, mediaRoot())) return;
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

#include "state/stored_state.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/sound_mode.h"
#include "base/text.h"
#include "library/media_paths.h"
#include "state/json_read.h"
#include "state/user_reader.h"

namespace tavek {
namespace {

struct SoundSpelling {
  std::string_view text;
  SoundMode mode;
};
constexpr std::array soundSpellings{
    SoundSpelling{"auto", SoundMode::Auto},         SoundSpelling{"Auto", SoundMode::Auto},
    SoundSpelling{"stereo", SoundMode::Stereo},     SoundSpelling{"Stereo", SoundMode::Stereo},
    SoundSpelling{"surround", SoundMode::Surround}, SoundSpelling{"Surround", SoundMode::Surround},
};

/// The top-level keys that this program reads, older spellings included.
constexpr std::array<std::string_view, 15> knownKeys{
    "tmdbScanEpoch", "TmdbScanEpoch", "tmdbScanLabel", "fanartScanEpoch", "FanartScanEpoch",
    "sound",         "Sound",         "settingsTab",   "SettingsTab",     "user",
    "User",          "ActiveUser",    "users",         "Users",           "WiFiHistory"};

std::optional<std::int64_t> readEpoch(const std::string& text, std::initializer_list<std::string_view> keys) {
  const auto number = readFirst(readNumber, text, keys);
  return number ? std::optional(wholeNumber(*number)) : std::nullopt;
}

std::optional<std::int32_t> readSoundMode(const std::string& text) {
  const std::string name = readFirst(readString, text, {"sound", "Sound"}).value_or("");
  const auto* spelling = std::ranges::find(soundSpellings, name, &SoundSpelling::text);
  if (spelling == soundSpellings.end()) return {};
  return static_cast<std::int32_t>(spelling->mode);
}

/// Each name once. Only if an array is the key's own value: in a file that was cut short the next one would
/// be of paths.
std::vector<std::string> readNames(const std::string& text, std::string_view key) {
  const auto value = findValue(text, key);
  if (!value || text.compare(*value, 1, "[") != 0) return {};
  std::vector<std::string> names;
  for (std::string& name : readStringArray(text, key)) {
    if (std::ranges::find(names, name) == names.end()) names.push_back(std::move(name));
  }
  return names;
}

void readUsersInto(StoredState& state, const std::string& text, bool& changed) {
  Users users = readUsers(text, changed);
  state.profiles = std::move(users.profiles);
  state.userNames = std::move(users.names);
  for (const std::string_view key : {"users", "Users"}) {
    if (state.userNames.empty()) state.userNames = readNames(text, key);
  }
}

}  // namespace

StoredState readStoredState(const std::string& whole, bool& changed) {
  StoredState state;
  const std::string text = knownPart(whole, knownKeys, state.unknown);
  state.tmdbScanEpoch = readEpoch(text, {"tmdbScanEpoch", "TmdbScanEpoch"});
  state.fanartScanEpoch = readEpoch(text, {"fanartScanEpoch", "FanartScanEpoch"});
  const std::string label = trim(readString(text, "tmdbScanLabel").value_or(""));
  if (!label.empty()) state.tmdbScanLabel = label;
  state.soundMode = readSoundMode(text);
  state.settingsTab = readFirst(readString, text, {"settingsTab", "SettingsTab"});
  state.activeUser = readActiveUser(text);
  readUsersInto(state, text, changed);
  state.wifiHistory = readNames(text, "WiFiHistory");
  if (state.activeUser.value_or("").empty() && !state.userNames.empty()) {
    state.activeUser = state.userNames.front();
  }
  completeUsers(state);
  return state;
}

std::optional<std::string> readActiveUser(const std::string& text) {
  return readFirst(readString, text, {"user", "User", "ActiveUser"});
}

void completeUsers(StoredState& state) {
  if (state.userNames.empty()) state.userNames = {"Alex", "Maria"};
  for (const std::string& name : state.userNames) {
    if (!name.empty()) state.profiles[name];
  }
}

bool renameUserIn(StoredState& state, const std::string& old, const std::string& now) {
  const auto entry = std::ranges::find(state.userNames, old);
  if (now.empty() || entry == state.userNames.end() || isUser(state, now)) return false;
  *entry = now;
  state.profiles[now] = std::move(state.profiles[old]);
  state.profiles.erase(old);
  if (state.activeUser == old) state.activeUser = now;
  return true;
}

bool isUser(const StoredState& state, const std::string& name) {
  return std::ranges::find(state.userNames, name) != state.userNames.end();
}

std::string activeName(const StoredState& state) {
  std::string active = state.activeUser.value_or("");
  return active.empty() && !state.userNames.empty() ? state.userNames.front() : active;
}

const RoomState& activeRoom(const StoredState& state, std::string_view room) {
  static const UserProfile none;
  const auto profile = state.profiles.find(activeName(state));
  return roomStateOf(profile != state.profiles.end() ? profile->second : none, room);
}

bool addRooms(StoredState& state, const std::vector<std::filesystem::path>& folders) {
  bool added = false;
  for (const std::filesystem::path& folder : folders) {
    const std::string room = normalizeRoomName(roomNameOfRoot(folder));
    if (isMainRoom(room)) continue;
    for (const std::string& name : state.userNames) {
      if (!name.empty() && state.profiles[name].otherRooms.try_emplace(room).second) added = true;
    }
  }
  return added;
}

}  // namespace tavek

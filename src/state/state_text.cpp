#include <array>

#include "state/json_write.h"
#include "state/stored_state.h"
#include "state/user_reader.h"

namespace tavek {
namespace {

std::string tabsOf(int count) {
  return std::string(static_cast<std::size_t>(count), '\t');
}

/// A string a line, at one level below the key's.
template <typename Strings>
std::string listText(const Strings& strings, int tabs) {
  std::string text;
  for (const std::string& string : strings) {
    text += (text.empty() ? "[\n" : ",\n") + tabsOf(tabs + 1) + quotedString(string);
  }
  return text.empty() ? "[]" : text + '\n' + tabsOf(tabs) + ']';
}

std::string roomText(const RoomState& room, const std::vector<JsonMember>& more) {
  FieldState fields{.text = "{\n"};
  appendField(fields, 4, "playing", room.playing);
  if (room.seek) appendRaw(fields, 4, "seek", std::to_string(*room.seek));
  appendRaw(fields, 4, "watched", listText(room.watched, 4));
  for (const auto& [key, value] : room.unknown) appendRaw(fields, 4, key, value);
  for (const auto& [key, value] : more) appendRaw(fields, 4, key, value);
  return fields.text + "\n\t\t\t}";
}

std::string userText(const UserProfile& profile) {
  FieldState fields{.text = "{\n"};
  appendField(fields, 3, "mode", profile.mode);
  std::vector<JsonMember> unknown = profile.unknown;
  forEachRoom(profile, [&](std::string_view name, const RoomState& room) {
    // What was no room becomes a part of one when a folder of that name has come.
    const std::string roomKey = escapeString(roomKeyOf(name));
    std::vector<JsonMember> more;
    std::erase_if(unknown, [&](const JsonMember& member) {
      if (member.key != roomKey) return false;
      more = readMembers(member.value);
      return true;
    });
    appendRaw(fields, 3, roomKey, roomText(room, more));
  });
  for (const auto& [key, value] : unknown) appendRaw(fields, 3, key, value);
  return fields.text + "\n\t\t}";
}

std::string usersText(const StoredState& state) {
  FieldState fields{.text = "{\n"};
  for (const std::string& name : state.userNames) {
    const auto profile = state.profiles.find(name);
    if (profile != state.profiles.end()) appendRaw(fields, 2, escapeString(name), userText(profile->second));
  }
  return fields.written ? fields.text + "\n\t}" : "";
}

std::string_view soundText(std::int32_t mode) {
  constexpr std::array<std::string_view, 3> names{"auto", "stereo", "surround"};
  return mode == 1 || mode == 2 ? names[static_cast<std::size_t>(mode)] : names[0];
}

}  // namespace

std::string stateText(const StoredState& state) {
  FieldState fields{.text = "{\n", .separator = ",\n\n"};
  const auto addNumber = [&](std::string_view key, const std::optional<std::int64_t>& number) {
    if (number) appendRaw(fields, 1, key, std::to_string(*number));
  };
  addNumber("tmdbScanEpoch", state.tmdbScanEpoch);
  appendField(fields, 1, "tmdbScanLabel", state.tmdbScanLabel);
  addNumber("fanartScanEpoch", state.fanartScanEpoch);
  if (state.soundMode) appendField(fields, 1, "sound", std::string(soundText(*state.soundMode)));
  if (state.settingsTab) appendRaw(fields, 1, "settingsTab", quotedString(*state.settingsTab));
  appendField(fields, 1, "user", state.activeUser);
  const std::string users = usersText(state);
  if (!users.empty()) appendRaw(fields, 1, "users", users);
  if (!state.wifiHistory.empty()) appendRaw(fields, 1, "WiFiHistory", listText(state.wifiHistory, 1));
  for (const auto& [key, value] : state.unknown) appendRaw(fields, 1, key, value);
  return fields.text + "\n}";
}

}  // namespace tavek

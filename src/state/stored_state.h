#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "state/user_profile.h"

namespace tavek {

inline constexpr std::size_t wifiHistoryLimit = 16;

/// What the shared state file holds.
struct StoredState {
  std::optional<std::int64_t> tmdbScanEpoch;    ///< seconds since 1970
  std::optional<std::string> tmdbScanLabel;     ///< the scanned room's folder name in lower case
  std::optional<std::int64_t> fanartScanEpoch;  ///< seconds since 1970
  std::optional<std::int32_t> soundMode;        ///< a SoundMode
  std::optional<std::string> settingsTab;
  std::optional<std::string> activeUser;
  std::vector<std::string> userNames;
  std::map<std::string, UserProfile> profiles;  ///< one for each user
  std::vector<std::string> wifiHistory;         ///< the latest first
  std::vector<JsonMember> unknown;              ///< what a newer program wrote
  /// In this run, old and new name, which is empty for a user who was removed; not stored.
  std::vector<std::pair<std::string, std::string>> renamedUsers;

  bool operator==(const StoredState&) const = default;
};

/// From any text: what can't be found keeps its default. `changed` is set where a save would give the text
/// another form. There is always a user.
StoredState readStoredState(const std::string& whole, bool& changed);
/// The user who is named as the active one; empty text if the file says that there is none.
std::optional<std::string> readActiveUser(const std::string& text);
/// Two users if there is none, and an empty profile for each that has none.
void completeUsers(StoredState& state);
/// Keeps the user's place in the list. False if there is no such user, or the new name is taken.
bool renameUserIn(StoredState& state, const std::string& old, const std::string& now);
bool isUser(const StoredState& state, const std::string& name);
/// Empty only if an old file names users without a name.
std::string activeName(const StoredState& state);
/// The active user's block of a room; without a copy, since tiles by the thousand ask for it.
const RoomState& activeRoom(const StoredState& state, std::string_view room);
/// Gives every user a block for each of these room folders; true if one was missing.
bool addRooms(StoredState& state, const std::vector<std::filesystem::path>& folders);
/// The whole file.
std::string stateText(const StoredState& state);

}  // namespace tavek

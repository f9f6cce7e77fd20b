#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "state/json_read.h"

namespace tavek {

/// Where a user stopped in a room, and what was seen.
struct RoomState {
  std::optional<std::string> playing;  ///< media path
  std::optional<std::int64_t> seek;    ///< microseconds into `playing`
  std::set<std::string> watched;       ///< media paths
  std::vector<JsonMember> unknown;     ///< what a newer program wrote

  bool operator==(const RoomState&) const = default;
};

struct UserProfile {
  RoomState movies;
  RoomState tv;
  RoomState video;
  std::map<std::string, RoomState> otherRooms;  ///< by normal room name, without the three above
  std::optional<std::string> mode;              ///< the home mode, a normal room name
  std::vector<JsonMember> unknown;              ///< what a newer program wrote

  bool operator==(const UserProfile&) const = default;
};

/// The rooms that every profile has, by normal name, in the order of the file.
struct MainRoom {
  std::string_view name;
  RoomState UserProfile::*block;
};
inline constexpr std::array mainRooms{MainRoom{"movies", &UserProfile::movies},
                                      MainRoom{"tv", &UserProfile::tv},
                                      MainRoom{"video", &UserProfile::video}};
/// By any spelling; the empty name stands for "movies".
bool isMainRoom(std::string_view name);

/// The block of a room by any spelling of its name; a missing one is created.
RoomState& roomStateOf(UserProfile& profile, std::string_view name);
/// The same for looking; a missing block shows as an empty one.
const RoomState& roomStateOf(const UserProfile& profile, std::string_view name);

/// Calls visit(name, block) for every block, in the order of the file. Blocks may be created meanwhile.
template <typename Profile, typename Visit>
void forEachRoom(Profile& profile, Visit visit) {
  for (const auto& [name, block] : mainRooms) visit(name, profile.*block);
  for (auto& [name, block] : profile.otherRooms) visit(std::string_view(name), block);
}

}  // namespace tavek

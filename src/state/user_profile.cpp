#include "state/user_profile.h"

#include <algorithm>

#include "library/media_paths.h"

namespace tavek {
namespace {

/// The entry for a normal name, or null.
const MainRoom* mainRoomOf(std::string_view normal) {
  const auto* room = std::ranges::find(mainRooms, normal.empty() ? "movies" : normal, &MainRoom::name);
  return room != mainRooms.end() ? room : nullptr;
}

}  // namespace

bool isMainRoom(std::string_view name) {
  return mainRoomOf(normalizeRoomName(name)) != nullptr;
}

RoomState& roomStateOf(UserProfile& profile, std::string_view name) {
  const std::string normal = normalizeRoomName(name);
  const MainRoom* main = mainRoomOf(normal);
  return main != nullptr ? profile.*main->block : profile.otherRooms[normal];
}

const RoomState& roomStateOf(const UserProfile& profile, std::string_view name) {
  static const RoomState none;
  const std::string normal = normalizeRoomName(name);
  if (const MainRoom* main = mainRoomOf(normal)) return profile.*main->block;
  const auto other = profile.otherRooms.find(normal);
  return other != profile.otherRooms.end() ? other->second : none;
}

}  // namespace tavek

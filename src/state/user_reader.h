#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "state/user_profile.h"

/// The users of a state file, in this program's form or in an older one. `changed` is set where the text has
/// another form than a save would give it; it is never cleared.
namespace tavek {

struct Users {
  std::vector<std::string> names;  ///< in file order, none empty, none twice
  std::map<std::string, UserProfile> profiles;
};

/// As far as the text holds together. Of two blocks with a name the first counts.
Users readUsers(const std::string& text, bool& changed);
/// The key of a room's block. A room that is called like the users' mode has one that no folder can have.
std::string roomKeyOf(std::string_view room);
/// One room of a user.
RoomState readRoom(const std::string& text, bool& changed);
/// Moves what plays to the block of the room in which it lies, unless something plays there. The block is the
/// profile's own under this name.
void repairRoom(UserProfile& profile, RoomState& block, std::string_view name, bool& changed);

}  // namespace tavek

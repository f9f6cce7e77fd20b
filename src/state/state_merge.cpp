#include "state/state_merge.h"

#include <algorithm>
#include <utility>

namespace tavek {
namespace {

template <typename Value>
void take(Value& theirs, const Value& base, const Value& ours) {
  if (ours != base) theirs = ours;
}

/// What this program does not know it does not change; only a damaged text can lack some.
void addMissing(std::vector<JsonMember>& theirs, const std::vector<JsonMember>& ours) {
  for (const JsonMember& member : ours) {
    if (std::ranges::find(theirs, member.key, &JsonMember::key) == theirs.end()) theirs.push_back(member);
  }
}

/// Ours are the latest.
void mergeWifiHistory(const StoredState& base, const StoredState& ours, StoredState& theirs) {
  if (ours.wifiHistory == base.wifiHistory) return;
  std::vector<std::string> history = ours.wifiHistory;
  for (const std::string& name : theirs.wifiHistory) {
    if (std::ranges::find(history, name) == history.end()) history.push_back(name);
  }
  if (history.size() > wifiHistoryLimit) history.resize(wifiHistoryLimit);
  theirs.wifiHistory = std::move(history);
}

void mergeRoom(const RoomState& base, const RoomState& ours, RoomState& theirs, bool theirsIsWhole) {
  // A position means nothing without what it is of.
  if (ours.playing != base.playing || ours.seek != base.seek) {
    theirs.playing = ours.playing;
    theirs.seek = ours.seek;
  }
  for (const std::string& media : ours.watched) {
    if (!theirsIsWhole || !base.watched.contains(media)) theirs.watched.insert(media);
  }
  for (const std::string& media : base.watched) {
    if (!ours.watched.contains(media)) theirs.watched.erase(media);
  }
  if (!theirsIsWhole) addMissing(theirs.unknown, ours.unknown);
}

void mergeProfile(const UserProfile& base, const UserProfile& ours, UserProfile& theirs, bool theirsIsWhole) {
  take(theirs.mode, base.mode, ours.mode);
  forEachRoom(ours, [&](std::string_view name, const RoomState& room) {
    mergeRoom(roomStateOf(base, name), room, roomStateOf(theirs, name), theirsIsWhole);
  });
  if (!theirsIsWhole) addMissing(theirs.unknown, ours.unknown);
}

/// A room that was only made ready for a user is no change.
bool isChanged(const UserProfile& base, const UserProfile& ours) {
  bool changed = ours.mode != base.mode;
  forEachRoom(ours, [&](std::string_view name, const RoomState& room) {
    if (room != roomStateOf(base, name)) changed = true;
  });
  return changed;
}

void mergeUsers(const StoredState& base, const StoredState& ours, StoredState& theirs, bool theirsIsWhole) {
  std::erase_if(theirs.userNames, [&](const std::string& name) {
    return isUser(base, name) && !isUser(ours, name) && theirs.profiles.erase(name) > 0;
  });
  for (const std::string& name : ours.userNames) {
    const auto profile = ours.profiles.find(name);
    if (profile == ours.profiles.end()) continue;
    const auto found = base.profiles.find(name);
    const UserProfile old = found != base.profiles.end() ? found->second : UserProfile();
    if (isUser(theirs, name)) {
      mergeProfile(old, profile->second, theirs.profiles[name], theirsIsWhole);
    } else if (!isUser(base, name) || isChanged(old, profile->second) || !theirsIsWhole) {
      theirs.userNames.push_back(name);
      theirs.profiles[name] = profile->second;
    }
  }
}

void mergeActiveUser(const StoredState& base, const StoredState& ours, StoredState& theirs) {
  take(theirs.activeUser, base.activeUser, ours.activeUser);
  const std::string name = theirs.activeUser.value_or("");
  if (isUser(theirs, name)) return;
  if (!name.empty() && ours.activeUser != base.activeUser) {
    theirs.userNames.push_back(name);
  } else if (!theirs.userNames.empty()) {
    theirs.activeUser = theirs.userNames.front();
  }
}

}  // namespace

StoredState mergeStates(StoredState base, const StoredState& ours, StoredState theirs, bool theirsIsWhole) {
  for (const auto& [old, now] : ours.renamedUsers) {
    renameUserIn(base, old, now);
    renameUserIn(theirs, old, now);
  }
  theirs.renamedUsers = ours.renamedUsers;
  take(theirs.tmdbScanEpoch, base.tmdbScanEpoch, ours.tmdbScanEpoch);
  take(theirs.tmdbScanLabel, base.tmdbScanLabel, ours.tmdbScanLabel);
  take(theirs.fanartScanEpoch, base.fanartScanEpoch, ours.fanartScanEpoch);
  take(theirs.soundMode, base.soundMode, ours.soundMode);
  take(theirs.settingsTab, base.settingsTab, ours.settingsTab);
  mergeWifiHistory(base, ours, theirs);
  if (!theirsIsWhole) addMissing(theirs.unknown, ours.unknown);
  mergeUsers(base, ours, theirs, theirsIsWhole);
  mergeActiveUser(base, ours, theirs);
  completeUsers(theirs);
  return theirs;
}

}  // namespace tavek

#include <algorithm>
#include <array>
#include <pwd.h>
#include <unistd.h>
#include <utility>

#include "state/state_store.h"

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

}  // namespace

bool StateStore::isUser(const std::string& name) const {
  return std::ranges::find(state_.userNames, name) != state_.userNames.end();
}

/// Empty only if an old file names users without a name.
std::string StateStore::activeName() const {
  std::string active = state_.activeUser.value_or("");
  return active.empty() && !state_.userNames.empty() ? state_.userNames.front() : active;
}

std::string StateStore::userOrActive(const std::string& user) const {
  std::string name = user.empty() ? activeName() : user;
  if (name.empty()) name = loginName();
  return name.empty() ? "Alex" : name;
}

UserProfile StateStore::profileOf(const std::string& name) const {
  const auto profile = state_.profiles.find(name);
  return profile != state_.profiles.end() ? profile->second : UserProfile();
}

void StateStore::saveProfile(const std::string& name, UserProfile profile) {
  if (!isUser(name)) state_.userNames.push_back(name);
  state_.profiles[name] = std::move(profile);
  write(true);
}

std::vector<std::string> StateStore::users() {
  const auto lock = enter();
  return state_.userNames;
}

std::string StateStore::activeUser() {
  const auto lock = enter();
  const std::string name = activeName();
  return name.empty() ? "Alex" : name;
}

void StateStore::setActiveUser(const std::string& name) {
  if (name.empty()) return;
  const auto lock = enter();
  if (!isUser(name)) state_.userNames.push_back(name);
  state_.profiles.try_emplace(name);
  state_.activeUser = name;
  write(false);
}

void StateStore::addUser(const std::string& name) {
  const auto lock = enter();
  if (name.empty() || isUser(name)) return;
  state_.userNames.push_back(name);
  state_.profiles.try_emplace(name);
  write(false);
}

void StateStore::renameUser(const std::string& old, const std::string& now) {
  const auto lock = enter();
  const auto entry = std::ranges::find(state_.userNames, old);
  if (old.empty() || now.empty() || entry == state_.userNames.end() || isUser(now)) return;
  *entry = now;
  state_.profiles[now] = std::move(state_.profiles[old]);
  state_.profiles.erase(old);
  if (state_.activeUser == old) state_.activeUser = now;
  write(false);
}

void StateStore::removeUser(const std::string& name) {
  const auto lock = enter();
  if (!isUser(name)) return;
  std::erase(state_.userNames, name);
  state_.profiles.erase(name);
  completeUsers(state_);
  if (state_.activeUser == name) state_.activeUser = state_.userNames.front();
  write(false);
}

std::optional<std::string> StateStore::userMode(const std::string& name) {
  const auto lock = enter();
  const auto profile = state_.profiles.find(name);
  return profile != state_.profiles.end() ? profile->second.mode : std::nullopt;
}

void StateStore::setUserMode(const std::string& name, const std::string& mode) {
  const auto lock = enter();
  const auto profile = state_.profiles.find(name);
  if (profile == state_.profiles.end()) return;
  profile->second.mode = mode.empty() ? std::nullopt : std::optional(mode);
  write(false);
}

void StateStore::ensureRooms(const std::vector<std::filesystem::path>& folders) {
  const auto lock = enter();
  if (addRooms(folders)) write(false);
}

}  // namespace tavek

#include "state/state_memory.h"

#include <fstream>
#include <system_error>
#include <utility>

#include "base/file_write.h"
#include "library/media_paths.h"
#include "state/json_read.h"
#include "state/json_write.h"
#include "state/user_reader.h"

namespace tavek {
namespace {

/// A file is never overwritten by a store that has none of these.
bool isWorthSaving(const StoredState& state) {
  return state.soundMode || state.tmdbScanEpoch || state.settingsTab || state.fanartScanEpoch ||
         !state.activeUser.value_or("").empty();
}

}  // namespace

StateMemory::StateMemory(std::filesystem::path file) : file_(std::move(file)) {}

std::unique_lock<std::mutex> StateMemory::enter() {
  std::unique_lock lock(mutex_);
  if (!loaded_) load();
  return lock;
}

std::string StateMemory::readStateFile() const {
  std::ifstream stream(file_, std::ios::binary);
  return readWholeFile(stream);
}

void StateMemory::load() {
  ensureJsonFile(file_);
  bool changed = false;
  state_ = readStoredState(readStateFile(), changed);
  if (addRooms(state_, listRoots())) changed = true;
  loaded_ = true;
  if (changed) write(false);
}

void StateMemory::write(bool force) {
  if (writesHeld_ && !force) {
    writePending_ = true;
    return;
  }
  std::error_code ignored;
  if (!isWorthSaving(state_) && std::filesystem::exists(file_, ignored)) return;
  writePending_ = !replaceFile(file_, stateText(state_));
}

void StateMemory::holdWrites(bool held) {
  const auto lock = enter();
  const bool released = writesHeld_ && !held;
  writesHeld_ = held;
  if (released && writePending_) write(false);
}

/// Not where it would lose users: while changes of our own have yet to get there, or from a file that was cut
/// short.
void StateMemory::reread() {
  const auto lock = enter();
  const std::string text = readStateFile();
  if (writePending_ || !isOneObject(text)) return;
  if (state_.activeUser.value_or("").empty()) {
    if (auto named = readActiveUser(text)) state_.activeUser = std::move(named);
  }
  bool changed = false;
  Users users = readUsers(text, changed);
  if (users.names.empty()) return;
  state_.userNames = std::move(users.names);
  state_.profiles = std::move(users.profiles);
  if (!isUser(state_, state_.activeUser.value_or(""))) state_.activeUser = state_.userNames.front();
  if (changed) write(true);
}

}  // namespace tavek

#include "state/state_file.h"

#include <system_error>
#include <utility>

#include "base/file_write.h"
#include "state/json_read.h"
#include "state/state_merge.h"
#include "state/user_reader.h"

namespace tavek {
namespace {

/// A file is never overwritten by a store that has none of these.
bool isWorthSaving(const StoredState& state) {
  return state.soundMode || state.tmdbScanEpoch || state.settingsTab || state.fanartScanEpoch ||
         !state.activeUser.value_or("").empty();
}

bool namesUsers(const std::string& text) {
  bool ignored = false;
  return !readUsers(text, ignored).names.empty();
}

}  // namespace

bool StateFile::load() {
  const SmallFile file = readSmallFile(file_);
  bool changed = file.found == FileFound::Missing;
  const auto memory = memory_.hold();
  memory->state = memory->base = readStoredState(file.text, changed);
  if (isDamaged(file.text)) memory->damaged = file.text;
  if (file.found == FileFound::Read) memory->stamp = file.stamp;
  return changed;
}

bool StateFile::takeUp(bool& changed) {
  const auto known = std::as_const(memory_).hold()->stamp;
  const SmallFile file = readSmallFile(file_, known);
  if (file.found != FileFound::Read) return file.found != FileFound::Unreadable;

  StoredState theirs = readStoredState(file.text, changed);
  const bool damaged = isDamaged(file.text);
  const bool hasUsers = namesUsers(file.text);
  if (!hasUsers) {
    theirs.userNames.clear();
    theirs.profiles.clear();
    theirs.activeUser.reset();
  }
  const auto memory = memory_.hold();
  if (memory->stamp == file.stamp) return true;
  memory->stamp = file.stamp;
  if (damaged) memory->damaged = file.text;
  theirs.renamedUsers = memory->state.renamedUsers;
  memory->state = mergeStates(memory->base, memory->state, theirs, hasUsers && !damaged);
  if (memory->state != theirs) changed = true;
  memory->base = std::move(theirs);
  return true;
}

bool StateFile::save() {
  bool ignored = false;
  if (!takeUp(ignored)) return false;
  const SmallFile old = readSmallFile(file_);
  std::string text = "{}\n";  // with nothing to say yet, the file is to be there at least
  std::string damaged;
  {
    const auto memory = memory_.hold();
    damaged = memory->damaged;
    if (isWorthSaving(memory->state)) {
      text = stateText(memory->state);
    } else if (old.found != FileFound::Missing) {
      return true;
    }
  }
  if (old.text == text) return true;
  if (!std::exchange(leftoversRemoved_, true)) removeLeftovers(file_);
  if (!damaged.empty() && !replaceFile(file_.string() + ".damaged", damaged)) return false;
  if (!replaceFile(file_, text)) return false;
  const SmallFile written = readSmallFile(file_);
  const auto memory = memory_.hold();
  memory->damaged.clear();
  if (written.text == text) memory->stamp = written.stamp;
  return true;
}

}  // namespace tavek

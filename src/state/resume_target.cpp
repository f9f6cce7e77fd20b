#include <fstream>
#include <iomanip>
#include <iostream>
#include <system_error>
#include <utility>

#include "base/console.h"
#include "base/paths.h"
#include "library/media_paths.h"
#include "state/state_store.h"
#include "state/user_reader.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// Empty if the file can be played as far as the file system knows.
std::string_view reasonAgainst(const fs::path& file) {
  std::error_code error;
  const bool exists = fs::exists(file, error);
  if (error) return "filesystem error";
  if (!exists) return "missing";
  const bool regular = fs::is_regular_file(file, error);
  if (error) return "filesystem error";
  if (!regular) return "not a regular file";
  return std::ifstream(file).is_open() ? "" : "unreadable";
}

}  // namespace

/// Takes up what was changed in the file from outside. Not where it would lose users: while changes of our
/// own have yet to get there, or from a file that was cut short.
void StateStore::rereadUsers() {
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
  if (!isUser(state_.activeUser.value_or(""))) state_.activeUser = state_.userNames.front();
  if (changed) write(true);
}

std::optional<fs::path> StateStore::resumeTarget(const fs::path& roomFolder) {
  const auto lock = enter();
  rereadUsers();
  const std::string user = state_.activeUser.value_or("");
  if (user.empty()) return {};
  const std::string room = roomNameOfRoot(roomFolder);
  const std::string stored = activeRoom(room).playing.value_or("");
  if (stored.empty()) return {};

  fs::path file = (mediaRoot() / stored).lexically_normal();
  const std::string_view reason = reasonAgainst(file);
  if (!reason.empty()) {
    std::cerr << console::boldRed << "[Resume] Failed to open persisted file for user \"" << user
              << "\": " << std::quoted(file.string()) << " (" << reason << ")" << console::reset << std::endl;
    return {};
  }
  if (fs::path(stored).is_absolute() && file.string() != stored) {
    roomStateOf(state_.profiles[user], room).playing = file.string();
    write(true);
  }
  return file;
}

}  // namespace tavek

#include <fstream>
#include <iomanip>
#include <iostream>
#include <system_error>

#include "base/console.h"
#include "base/paths.h"
#include "library/media_paths.h"
#include "state/stored_users.h"

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

std::optional<fs::path> StoredUsers::resumeTarget(const fs::path& roomFolder) {
  memory_.reread();
  const std::string room = roomNameOfRoot(roomFolder);
  std::string user;
  const std::string stored = memory_.look([&](const StoredState& state) {
    user = state.activeUser.value_or("");
    return user.empty() ? "" : activeRoom(state, room).playing.value_or("");
  });
  if (stored.empty()) return {};

  fs::path file = (mediaRoot() / stored).lexically_normal();
  const std::string_view reason = reasonAgainst(file);
  if (!reason.empty()) {
    std::cerr << console::boldRed << "[Resume] Failed to open persisted file for user \"" << user
              << "\": " << std::quoted(file.string()) << " (" << reason << ")" << console::reset << std::endl;
    return {};
  }
  if (fs::path(stored).is_absolute() && file.string() != stored) {
    memory_.change(Save::Always, [&](StoredState& state) {
      roomStateOf(state.profiles[user], room).playing = file.string();
      return true;
    });
  }
  return file;
}

}  // namespace tavek

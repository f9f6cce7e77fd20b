#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "state/folder_playback.h"
#include "state/media_notes.h"
#include "state/state_memory.h"

namespace tavek {

/// The users, their rooms, and what each of them played and watched, in the shared state file. A user that is
/// empty stands for the active one; a media path is the text by which the viewing knows the item; positions
/// are in microseconds.
class StoredUsers {
 public:
  StoredUsers(StateMemory& memory, FolderPlayback& playback, MediaNotes& notes)
      : memory_(memory), playback_(playback), notes_(notes) {}

  /// What takes up a change of the file from outside: a step of a background job, which reads the disk and
  /// may outlive all of this.
  std::function<void()> rereading() const { return memory_.rereading(); }

  std::vector<std::string> users();
  std::string activeUser();
  void setActiveUser(const std::string& name);
  void addUser(const std::string& name);
  void renameUser(const std::string& old, const std::string& now);
  /// The last one gives way to the two of a fresh store.
  void removeUser(const std::string& name);
  std::optional<std::string> userMode(const std::string& name);
  void setUserMode(const std::string& name, const std::string& mode);
  /// Gives every user a block for each of these room folders.
  void ensureRooms(const std::vector<std::filesystem::path>& folders);

  /// The active user's own position, else the one that is kept beside the media.
  std::optional<std::int64_t> resumePosition(const std::string& media);
  void setPlaying(const std::string& media, const std::string& user);
  void setPosition(const std::string& media, std::int64_t position, const std::string& user);
  void clearPlaying(const std::filesystem::path& roomFolder);
  /// The media does not play, so it is not what its room starts with.
  void dropPlaying(const std::string& media, const std::string& user);
  bool isWatched(const std::string& media);
  bool hasWatchedBelow(const std::filesystem::path& folder);
  void markWatched(const std::string& media, bool flag, const std::string& user);
  /// What to start when a room opens, if it can be read; otherwise the reason goes to stderr. Takes up what
  /// was changed in the file from outside.
  std::optional<std::filesystem::path> resumeTarget(const std::filesystem::path& roomFolder);
  /// Everything that is kept about a media file follows it to its new path.
  void renameMedia(const std::string& old, const std::string& now);
  /// The same for all media in a folder that has a new name.
  void renameFolder(const std::filesystem::path& old, const std::filesystem::path& now);

 private:
  StateMemory& memory_;
  FolderPlayback& playback_;
  MediaNotes& notes_;
};

}  // namespace tavek

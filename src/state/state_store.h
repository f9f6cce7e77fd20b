#pragma once

#include <filesystem>

#include "state/stored.h"

namespace tavek {

/// The owner of all that the program remembers: of the shared state file, which is read at the first call,
/// and of the playback.json files beside the media. Nothing throws and nothing is reported: a save that fails
/// leaves the old file, and the next one tries again.
class StateStore {
 public:
  explicit StateStore(std::filesystem::path file);
  StateStore(const StateStore&) = delete;
  StateStore& operator=(const StateStore&) = delete;

  /// To be handed on by value or reference; the store has to outlive them.
  Stored parts() { return {settings_, users_, playback_, notes_}; }

  void holdWrites(bool held) { memory_.holdWrites(held); }
  /// Saves what has not been saved yet.
  void flush() { memory_.holdWrites(false); }

 private:
  StateMemory memory_;
  MediaNotes notes_;
  FolderPlayback playback_;
  StoredSettings settings_{memory_};
  StoredUsers users_{memory_, playback_, notes_};
};

}  // namespace tavek

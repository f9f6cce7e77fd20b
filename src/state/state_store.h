#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

#include "base/paths.h"
#include "state/stored.h"

namespace tavek {

/// The owner of all that the program remembers: of the shared state file, which is read at once, of the
/// playback.json files beside the media, and of the device files in the home folder. Changes are in memory at
/// once; one thread saves behind them. Nothing throws and nothing is reported: a save that fails leaves the
/// old file, and is tried again.
class StateStore {
 public:
  explicit StateStore(std::filesystem::path file, const std::filesystem::path& home = homeFolder());
  StateStore(const StateStore&) = delete;
  StateStore& operator=(const StateStore&) = delete;

  /// To be handed on by value or reference; the store has to outlive them.
  Stored parts() { return {settings_, users_, playback_, notes_, devices_}; }

  void holdWrites(bool held) { saves_.hold(held); }
  /// Saves what is not saved yet, whether it was held or has failed before, and waits for that no longer than
  /// the limit: a dead disk must not hold the end of the program up. False if it is not done.
  bool flush(std::chrono::milliseconds limit = std::chrono::milliseconds(500)) { return saves_.flush(limit); }

 private:
  // Shared with the thread that saves, which may outlive the store.
  const std::shared_ptr<StateFile> file_;
  const std::shared_ptr<PlaybackFiles> files_;
  const std::shared_ptr<DeviceFiles> deviceFiles_;
  SaveThread saves_;
  StateMemory memory_;
  MediaNotes notes_;
  FolderPlayback playback_;
  StoredSettings settings_;
  StoredUsers users_;
  StoredDevices devices_;
};

}  // namespace tavek

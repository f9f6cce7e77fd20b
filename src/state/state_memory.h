#pragma once

#include <filesystem>
#include <mutex>
#include <string>

#include "state/stored_state.h"

namespace tavek {

/// When a change is saved.
enum class Save {
  AtRest,  ///< not while the writes are held
  Always,
};

/// The shared state file in memory, read at the first look.
class StateMemory {
 public:
  explicit StateMemory(std::filesystem::path file);

  /// see(const StoredState&), under the lock.
  template <typename Look>
  auto look(Look see) {
    const auto lock = enter();
    return see(static_cast<const StoredState&>(state_));
  }
  /// apply(StoredState&), under the lock; a save follows if it gives true.
  template <typename Change>
  void change(Save when, Change apply) {
    const auto lock = enter();
    if (apply(state_)) write(when == Save::Always);
  }
  /// Takes up what was changed in the file from outside.
  void reread();
  /// Puts off the saves that may wait.
  void holdWrites(bool held);

 private:
  // All below expect the lock to be held.
  std::unique_lock<std::mutex> enter();
  void load();
  std::string readStateFile() const;
  void write(bool force);

  const std::filesystem::path file_;
  std::mutex mutex_;
  bool loaded_ = false;
  bool writesHeld_ = false;
  bool writePending_ = false;  ///< a save was put off or has failed
  StoredState state_;
};

}  // namespace tavek

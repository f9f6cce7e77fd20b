#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/guarded.h"
#include "state/small_file.h"
#include "state/stored_state.h"

namespace tavek {

/// The shared state file and what of it is in memory. Files are read and written
/// without the lock, so a slow disk delays nobody but who saves.
/// A file that is not the one that was last read or written is merged before it is saved over, and one that
/// cannot be read is never replaced: the disk may have been mounted after the start, another program may run
/// beside this one.
class StateFile {
 public:
  explicit StateFile(std::filesystem::path file) : file_(std::move(file)) {}

  /// Reads the file, before anything else. True where a save would give it another form.
  bool load();

  /// see(const StoredState&), under the lock.
  template <typename See>
  auto look(See see) {
    return see(std::as_const(memory_.hold()->state));
  }
  /// apply(StoredState&), under the lock; gives what that gives: whether there is something to save.
  template <typename Apply>
  bool change(Apply apply) {
    return apply(memory_.hold()->state);
  }
  /// Reads and merges the file if it has changed. False if it cannot be read. True in `changed` where a save
  /// would give it another form.
  bool takeUp(bool& changed);
  /// False where it has to be tried again. On the thread that saves, with the lock of the writers held.
  bool save();

  std::filesystem::path lockFile() const { return file_.string() + ".lock"; }

 private:
  struct Memory {
    StoredState state;
    StoredState base;  ///< the file as it was when this run's changes began
    std::optional<FileStamp> stamp;
    std::string damaged;  ///< a text that is not whole, until a copy is kept
  };

  const std::filesystem::path file_;
  Guarded<Memory> memory_;
  bool leftoversRemoved_ = false;  ///< the saving thread's
};

}  // namespace tavek

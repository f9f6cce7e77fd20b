#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "state/save_thread.h"
#include "state/state_file.h"

namespace tavek {

/// The shared state file as its parts see it: what they change is in memory at once, and saved behind them.
class StateMemory {
 public:
  StateMemory(std::shared_ptr<StateFile> file, SaveThread& saves) : file_(std::move(file)), saves_(saves) {}

  /// see(const StoredState&); nobody changes it meanwhile.
  template <typename See>
  auto look(See see) {
    return file_->look(see);
  }
  /// apply(StoredState&); a save follows if it gives true.
  template <typename Apply>
  void change(Save when, Apply apply) {
    if (file_->change(apply)) saves_.request(when);
  }
  /// Takes up what was changed in the file from outside.
  void reread() {
    bool otherForm = false;
    if (file_->takeUp(otherForm) && otherForm) saves_.request(Save::Always);
  }
  /// The same for a job that may outlive all of this; another form is saved with the next change.
  std::function<void()> rereading() const {
    return [file = file_] {
      bool otherForm = false;
      file->takeUp(otherForm);
    };
  }
  void holdWrites(bool held) { saves_.hold(held); }

 private:
  const std::shared_ptr<StateFile> file_;
  SaveThread& saves_;
};

}  // namespace tavek

#pragma once

#include "state/save_thread.h"
#include "state/state_file.h"

namespace tavek {

/// The shared state file as its parts see it: what they change is in memory at once, and saved behind them.
class StateMemory {
 public:
  StateMemory(StateFile& file, SaveThread& saves) : file_(file), saves_(saves) {}

  /// see(const StoredState&); nobody changes it meanwhile.
  template <typename See>
  auto look(See see) {
    return file_.look(see);
  }
  /// apply(StoredState&); a save follows if it gives true.
  template <typename Apply>
  void change(Save when, Apply apply) {
    if (file_.change(apply)) saves_.request(when);
  }
  /// Takes up what was changed in the file from outside.
  void reread() {
    bool changed = false;
    if (file_.takeUp(changed) && changed) saves_.request(Save::Always);
  }
  void holdWrites(bool held) { saves_.hold(held); }

 private:
  StateFile& file_;
  SaveThread& saves_;
};

}  // namespace tavek

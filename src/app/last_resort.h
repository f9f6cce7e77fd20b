#pragma once

#include <memory>
#include <thread>

#include "base/process_flags.h"

namespace tavek {

class StateStore;

/// Ends the process if its main thread can't, because a disk or a driver holds it: within a second after a
/// signal or the viewer's quit what is remembered is saved, and the process goes with status 0.
class LastResort {
 public:
  explicit LastResort(StateStore& state);
  ~LastResort();
  LastResort(const LastResort&) = delete;
  LastResort& operator=(const LastResort&) = delete;

 private:
  void watch(StateStore& state) const;

  Flag over_;
  std::thread thread_;
};

}  // namespace tavek

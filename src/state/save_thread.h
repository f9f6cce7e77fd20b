#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "base/process_flags.h"

namespace tavek {

/// When a change is saved.
enum class Save {
  AtRest,  ///< not while the saves are held
  Always,
};

/// The one thread that writes what has changed. What comes together within a quarter of a second is one
/// save, and a save that failed is tried again every two seconds. Every thread may call it, and no call but
/// flush waits.
class SaveThread {
 public:
  /// `save` gives false where it has to be tried again; it owns all that it touches. The thread starts with
  /// the first request.
  explicit SaveThread(std::function<bool()> save);
  /// Leaves the thread, which a dead disk may hold.
  ~SaveThread();
  SaveThread(const SaveThread&) = delete;
  SaveThread& operator=(const SaveThread&) = delete;

  void request(Save when);
  void hold(bool held);
  /// Saves at once what is not saved yet, also what is held or has failed. False if it is not done within the
  /// limit.
  bool flush(std::chrono::milliseconds limit);

 private:
  struct Shared;
  void start();

  const std::shared_ptr<Shared> shared_;
  std::thread thread_;  ///< under the lock of what it shares
  std::shared_ptr<Flag> ended_;
};

}  // namespace tavek

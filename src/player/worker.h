#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <thread>

#include "base/guarded.h"
#include "base/process_flags.h"

namespace tavek {

/// A thread of an item, which may hang in a dead disk or a driver. What its body captures lives for as long
/// as the thread does. The body must not throw.
class Worker {
 public:
  Worker() = default;
  ~Worker() { endBy({}); }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  /// Throws std::system_error without a thread to run it on.
  void start(std::function<void()> body);
  /// Waits until the thread has ended, at the longest until the machine's clock shows this. False if it still
  /// ran then and was left behind.
  bool endBy(std::chrono::steady_clock::time_point limit);

 private:
  struct End {
    Guarded<bool> reached{false};
    std::condition_variable told;
    Flag joinable;
  };

  std::thread thread_;
  std::shared_ptr<End> end_;
};

}  // namespace tavek

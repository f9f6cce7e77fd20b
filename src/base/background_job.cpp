#include "base/background_job.h"

#include <vector>

namespace tavek {
namespace {

struct LeftThread {
  std::thread thread;
  std::shared_ptr<const Flag> ended;
};

class LeftThreads {
 public:
  ~LeftThreads() {
    const auto threads = threads_.hold();
    for (LeftThread& left : *threads) left.thread.join();
  }
  void add(LeftThread left) { threads_.hold()->push_back(std::move(left)); }
  /// How many still run.
  std::size_t joinEnded() {
    const auto threads = threads_.hold();
    std::erase_if(*threads, [](LeftThread& left) {
      if (*left.ended) left.thread.join();
      return !left.thread.joinable();
    });
    return threads->size();
  }

 private:
  Guarded<std::vector<LeftThread>> threads_;
};

/// Not made at the first use: what is made before it would outlive it.
LeftThreads leftThreads;

}  // namespace

void leaveThread(std::thread thread, std::shared_ptr<const Flag> ended) {
  leftThreads.add({std::move(thread), std::move(ended)});
  leftThreads.joinEnded();
}

bool joinLeftThreads(std::chrono::milliseconds limit) {
  using SystemClock = std::chrono::steady_clock;
  const auto end = SystemClock::now() + limit;
  while (leftThreads.joinEnded() > 0) {
    if (SystemClock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace tavek

#include "player/worker.h"

#include <utility>

#include "base/background_job.h"

namespace tavek {

void Worker::start(std::function<void()> body) {
  end_ = std::make_shared<End>();
  thread_ = std::thread([end = end_, run = std::move(body)]() mutable {
    run();
    run = nullptr;
    *end->reached.hold() = true;
    end->told.notify_all();
    end->joinable = true;
  });
}

bool Worker::endBy(std::chrono::steady_clock::time_point limit) {
  if (!thread_.joinable()) return true;
  bool ended = false;
  {
    auto reached = end_->reached.hold();
    ended = end_->told.wait_until(reached.lock(), limit, [&] { return *reached; });
  }
  if (ended) {
    thread_.join();
  } else {
    leaveThread(std::move(thread_), std::shared_ptr<const Flag>(end_, &end_->joinable));
  }
  return ended;
}

}  // namespace tavek

#include "state/save_thread.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include "base/background_job.h"

namespace tavek {
namespace {

using SystemClock = std::chrono::steady_clock;
using Due = std::optional<SystemClock::time_point>;

constexpr std::chrono::milliseconds gathering{250};
constexpr std::chrono::seconds retryAfter{2};

}  // namespace

struct SaveThread::Shared {
  explicit Shared(std::function<bool()> given) : save(std::move(given)) {}
  bool pending() const { return always || atRest; }
  Due next() const {
    if (held || !atRest) return always;
    return always ? std::min(always, atRest) : atRest;
  }
  void run();

  const std::function<bool()> save;
  std::mutex mutex;  ///< guards all below
  std::condition_variable changed;
  Due always;  ///< when a save of either kind falls due
  Due atRest;
  bool held = false;
  bool stop = false;
  bool busy = false;
  unsigned attempts = 0;  ///< saves that have ended, one way or the other
};

void SaveThread::Shared::run() {
  std::unique_lock lock(mutex);
  while (!stop) {
    const Due due = next();
    if (!due) {
      changed.wait(lock);
      continue;
    }
    if (SystemClock::now() < *due) {
      changed.wait_until(lock, *due);
      continue;
    }
    always.reset();
    atRest.reset();
    busy = true;
    lock.unlock();
    const bool saved = save();
    lock.lock();
    busy = false;
    ++attempts;
    if (!saved && !always) always = SystemClock::now() + retryAfter;
    changed.notify_all();
  }
}

SaveThread::SaveThread(std::function<bool()> save) : shared_(std::make_shared<Shared>(std::move(save))) {}

SaveThread::~SaveThread() {
  {
    const std::lock_guard lock(shared_->mutex);
    shared_->stop = true;
    shared_->changed.notify_all();
  }
  if (thread_.joinable()) leaveThread(std::move(thread_), std::move(ended_));
}

void SaveThread::request(Save when) {
  const std::lock_guard lock(shared_->mutex);
  Due& due = when == Save::Always ? shared_->always : shared_->atRest;
  if (!due) due = SystemClock::now() + gathering;
  shared_->changed.notify_all();
  if (!thread_.joinable()) start();
}

void SaveThread::start() {
  ended_ = std::make_shared<Flag>();
  thread_ = std::thread([shared = shared_, ended = ended_]() mutable {
    shared->run();
    shared.reset();
    *ended = true;
  });
}

void SaveThread::hold(bool held) {
  const std::lock_guard lock(shared_->mutex);
  shared_->held = held;
  shared_->changed.notify_all();
}

bool SaveThread::flush(std::chrono::milliseconds limit) {
  std::unique_lock lock(shared_->mutex);
  const unsigned target = shared_->attempts + (shared_->busy ? 1 : 0) + (shared_->pending() ? 1 : 0);
  if (shared_->pending()) shared_->always = SystemClock::now();
  shared_->changed.notify_all();
  shared_->changed.wait_for(lock, limit, [&] { return shared_->attempts >= target; });
  return !shared_->pending() && !shared_->busy;
}

}  // namespace tavek

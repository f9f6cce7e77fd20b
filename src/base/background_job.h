#pragma once

#include <chrono>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "base/guarded.h"
#include "base/process_flags.h"

/// Work beside the main thread. Whoever leaves a job never waits for it: a thread that has lost its owner is
/// told to stop, kept, and joined once it has ended. So a job's body owns all that it touches.
namespace tavek {

/// Keeps a thread that was told to stop; `ended` is set as its last step.
void leaveThread(std::thread thread, std::shared_ptr<const Flag> ended);
/// Joins the threads that were left, as far as they end within the limit. False if one still runs, which a
/// dead disk can bring about; the process then has to end without it.
bool joinLeftThreads(std::chrono::milliseconds limit);

/// The body's side of a job.
template <typename Message>
class JobSide {
 public:
  /// Nobody wants the result any more.
  const Flag& stop() const { return stop_; }
  /// Puts a message into the mailbox of the owner.
  void post(Message message) { mailbox_.hold()->push_back(std::move(message)); }

 private:
  template <typename>
  friend class BackgroundJob;
  Flag stop_;
  Guarded<std::deque<Message>> mailbox_;
};

/// One thread at a time with a mailbox that its owner polls, once per frame. All but the body is the owner's
/// thread's. What the body throws ends it; it has to tell of failures by messages.
template <typename Message>
class BackgroundJob {
 public:
  using Body = std::function<void(JobSide<Message>&)>;

  BackgroundJob() = default;
  ~BackgroundJob() { leave(); }
  BackgroundJob(const BackgroundJob&) = delete;
  BackgroundJob& operator=(const BackgroundJob&) = delete;

  /// Leaves the job before. Throws std::system_error without a thread to run it on.
  void start(Body body) {
    leave();
    side_ = std::make_shared<JobSide<Message>>();
    ended_ = std::make_shared<Flag>();
    thread_ = std::thread([side = side_, ended = ended_, run = std::move(body)]() mutable {
      try {
        run(*side);
      } catch (const std::exception&) {
        // The mailbox ends with what it has.
      }
      run = nullptr;
      *ended = true;
    });
  }

  /// Tells the body to stop, drops what it posted, and goes on at once.
  void leave() {
    if (!thread_.joinable()) return;
    side_->stop_ = true;
    leaveThread(std::move(thread_), std::move(ended_));
    side_.reset();
    ended_.reset();
  }

  /// The body has not returned yet.
  bool running() const { return ended_ && !*ended_; }

  std::optional<Message> take() {
    if (!side_) return {};
    const auto mailbox = side_->mailbox_.hold();
    if (mailbox->empty()) return {};
    Message first = std::move(mailbox->front());
    mailbox->pop_front();
    return first;
  }
  std::size_t waiting() const { return side_ ? side_->mailbox_.hold()->size() : 0; }

 private:
  std::shared_ptr<JobSide<Message>> side_;
  std::shared_ptr<Flag> ended_;
  std::thread thread_;
};

}  // namespace tavek

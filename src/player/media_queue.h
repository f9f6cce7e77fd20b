#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <utility>

#include "base/process_flags.h"
#include "media/handles.h"
#include "player/picture_frame.h"

namespace tavek {

/// A packet or picture with the number of the seek it comes after, so that one from before a seek can be told
/// from the present ones wherever it was when the seek came.
template <typename Pointer>
struct Tagged {
  Pointer item;
  unsigned seekRound = 0;
};

/// A bounded blocking queue of owned FFmpeg objects between two threads of the playback engine.
/// Any thread may call any operation. A queue goes from open to finished (end of input) and from either to
/// closed (tear-down), and is never reopened. Every wait looks at stopSignalled at least each 50 ms, so a
/// signal handler needs no wake-up.
template <typename Element>
class MediaQueue {
 public:
  explicit MediaQueue(std::size_t capacity) : capacity_(capacity) {}

  /// Blocks while the queue is full. False leaves the element with the caller: nothing passes any more.
  bool push(Element& element) {
    std::unique_lock held(lock_);
    waitWhile(held, notFull_, [this] { return !finished_ && items_.size() >= capacity_; });
    if (closed_ || finished_) return false;
    items_.push_back(std::move(element));
    notEmpty_.notify_one();
    return true;
  }

  /// Blocks while the queue is empty. False means that nothing comes any more.
  bool pop(Element& element) {
    std::unique_lock held(lock_);
    waitWhile(held, notEmpty_, [this] { return items_.empty() && !finished_; });
    return takeFrontWhileLocked(element);
  }

  /// As pop, but gives false at once where pop would block.
  bool tryPop(Element& element) {
    const std::lock_guard held(lock_);
    if (stopSignalled) closed_ = true;
    return takeFrontWhileLocked(element);
  }

  /// Destroys what is inside; closed and finished stay as they are.
  void clear() {
    std::deque<Element> dropped;
    {
      const std::lock_guard held(lock_);
      dropped.swap(items_);
    }
    notFull_.notify_all();
    notEmpty_.notify_all();
  }

  void close() {
    closed_ = true;
    notFull_.notify_all();
    notEmpty_.notify_all();
  }

  /// No more elements will come; what is inside can still be taken.
  void finish() {
    finished_ = true;
    notEmpty_.notify_all();
  }

 private:
  template <typename Condition>
  void waitWhile(std::unique_lock<std::mutex>& held, std::condition_variable& wake, Condition blocked) {
    while (!closed_ && blocked()) {
      if (stopSignalled) break;
      wake.wait_for(held, std::chrono::milliseconds(50));
    }
    if (stopSignalled) closed_ = true;
  }

  bool takeFrontWhileLocked(Element& element) {
    if (closed_ || items_.empty()) return false;
    element = std::move(items_.front());
    items_.pop_front();
    notFull_.notify_one();
    return true;
  }

  const std::size_t capacity_;
  std::mutex lock_;  ///< guards items_
  std::deque<Element> items_;
  std::condition_variable notFull_;
  std::condition_variable notEmpty_;
  // Set without the lock too; the 50 ms of each wait cover the wake-up that this can miss.
  std::atomic<bool> closed_{false};
  std::atomic<bool> finished_{false};
};

using PacketQueue = MediaQueue<Tagged<ffmpeg::PacketPtr>>;
using FrameQueue = MediaQueue<Tagged<PicturePtr>>;

}  // namespace tavek

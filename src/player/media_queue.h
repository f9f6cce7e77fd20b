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

namespace tavek {

/// A packet or picture with the number of the seek it comes after, so that one from before a seek can be told
/// from the present ones wherever it was when the seek came.
template <typename Pointer>
struct Tagged {
  Pointer item;
  unsigned seekRound = 0;
};

inline std::size_t bytesOf(const AVPacket& packet) {
  return static_cast<std::size_t>(packet.size);
}

inline std::size_t bytesOf(const AVFrame& frame) {
  std::size_t bytes = 0;
  for (const AVBufferRef* plane : frame.buf) bytes += plane != nullptr ? plane->size : 0;
  return bytes;
}

/// How much a queue takes, whichever is reached first.
struct QueueLimits {
  std::size_t count = 64;  ///< over two seconds of film, so that a slow stretch is not seen
  /// 192 MB with the picture on the screen and the one at the door. 64 pictures of 4K would be 800 MB.
  std::size_t bytes = 168'000'000;
  std::size_t countAtLeast = 8;  ///< however large they are
};

/// A bounded blocking queue of owned FFmpeg objects between two threads of the playback engine.
/// Any thread may call any operation. A closed queue is never
/// opened again. What is inside goes when it is closed: a decoder may wait for
/// its pictures to come back. Every wait looks at stopSignalled at least each 50 ms, so a signal handler
/// needs no wake-up.
template <typename Element>
class MediaQueue {
 public:
  using Milliseconds = std::chrono::milliseconds;

  explicit MediaQueue(QueueLimits limits = {}) : limits_(limits) {}

  /// Blocks while the queue is full. False leaves the element with the caller: nothing passes any more.
  bool push(Element& element) {
    std::unique_lock held(lock_);
    const std::size_t bytes = bytesIn(element);
    waitWhile(held, notFull_, [&] { return fullWhileLocked(bytes); });
    if (closed_) return false;
    bytes_ += bytes;
    items_.push_back(std::move(element));
    notEmpty_.notify_one();
    return true;
  }

  /// Blocks while the queue is empty. False means that nothing comes any more.
  bool pop(Element& element) {
    std::unique_lock held(lock_);
    waitWhile(held, notEmpty_, [this] { return items_.empty(); });
    return takeFrontWhileLocked(element);
  }

  /// As pop, but gives false at the latest after `limit` of the machine's time.
  bool popWithin(Element& element, Milliseconds limit) {
    std::unique_lock held(lock_);
    notEmpty_.wait_for(held, limit, [this] { return closed_ || !items_.empty(); });
    if (stopSignalled) closed_ = true;
    return takeFrontWhileLocked(element);
  }

  /// Destroys what is inside; a closed queue stays closed.
  void clear() {
    std::deque<Element> dropped;
    {
      const std::lock_guard held(lock_);
      dropped.swap(items_);
      bytes_ = 0;
    }
    notFull_.notify_all();
    notEmpty_.notify_all();
  }

  void close() {
    closed_ = true;
    clear();
  }

  bool empty() const {
    const std::lock_guard held(lock_);
    return items_.empty();
  }

 private:
  template <typename Condition>
  void waitWhile(std::unique_lock<std::mutex>& held, std::condition_variable& wake, Condition blocked) {
    while (!closed_ && blocked()) {
      if (stopSignalled) break;
      wake.wait_for(held, Milliseconds(50));
    }
    if (stopSignalled) closed_ = true;
  }

  static std::size_t bytesIn(const Element& element) { return element.item ? bytesOf(*element.item) : 0; }

  bool fullWhileLocked(std::size_t more) const {
    if (items_.size() >= limits_.count) return true;
    return items_.size() >= limits_.countAtLeast && bytes_ + more > limits_.bytes;
  }

  bool takeFrontWhileLocked(Element& element) {
    if (closed_ || items_.empty()) return false;
    bytes_ -= bytesIn(items_.front());
    element = std::move(items_.front());
    items_.pop_front();
    notFull_.notify_one();
    return true;
  }

  const QueueLimits limits_;
  mutable std::mutex lock_;  ///< guards items_ and bytes_
  std::deque<Element> items_;
  std::size_t bytes_ = 0;
  std::condition_variable notFull_;
  std::condition_variable notEmpty_;
  // Set without the lock too; the 50 ms of each wait cover the wake-up that this can miss.
  std::atomic<bool> closed_{false};
};

using PacketQueue = MediaQueue<Tagged<ffmpeg::PacketPtr>>;
/// Decoded pictures: planar YUV 4:2:0, their pts in microseconds.
using FrameQueue = MediaQueue<Tagged<ffmpeg::FramePtr>>;

}  // namespace tavek

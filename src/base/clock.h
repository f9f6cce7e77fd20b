#pragma once

#include <chrono>
#include <cstdint>

namespace tavek {

/// The time by which items play and screens move, so that a test can turn it. Any thread may call it.
class Clock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  Clock() = default;
  virtual ~Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;

  virtual Time now() const = 0;
  /// Sleeps on through signals; a time that is over returns at once.
  virtual void sleepUntil(Time time) = 0;

  void sleepFor(std::chrono::microseconds span) { sleepUntil(now() + span); }
  /// Milliseconds for the stamps of the screens, where 0 stands for "not set".
  std::uint64_t ticksMs() const;
};

/// The machine's own.
Clock& steadyClock();

}  // namespace tavek

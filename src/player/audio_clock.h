#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>

namespace tavek {

/// What is heard right now, as a position in the item: the master clock of the pictures. The audio thread
/// sets it after each block, a seek sets it to its target, and every thread may ask. Positions in
/// microseconds; 0 means that nobody knows.
class AudioClock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// Audio up to `writtenUs` is with the device, which still holds `delayUs` of it. The clock runs on by
  /// itself until the end of what was written, since a device takes new audio in coarse steps and a picture
  /// must not wait for the next one.
  void wrote(std::int64_t writtenUs, std::int64_t delayUs, Time now);
  /// Stands at `positionUs` until the next write.
  void set(std::int64_t positionUs);
  std::int64_t heardUs(Time when) const;

 private:
  mutable std::mutex lock_;  ///< guards all below
  std::int64_t heardUs_ = 0;
  std::int64_t writtenUs_ = 0;
  Time at_{};
};

}  // namespace tavek

#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>

/// The volume of one item in dB, and the limiter that keeps its peaks off the clamp. An item without a volume
/// of its own gets one from its first block with sound.
namespace tavek {

/// A word of the volume: the audio thread and the main thread read and write it without a lock, and a stale
/// value lives for one block.
template <typename T>
class VolumeWord {
 public:
  constexpr VolumeWord(T value) : value_(value) {}  // NOLINT(google-explicit-constructor)
  VolumeWord& operator=(T value) {
    value_.store(value, std::memory_order_relaxed);
    return *this;
  }
  operator T() const {
    return value_.load(std::memory_order_relaxed);
  }  // NOLINT(google-explicit-constructor)

 private:
  std::atomic<T> value_;
};

/// What plays at this factor has a full-scale peak right at the limiter's target.
inline constexpr double defaultVolumeLinear = 0.999786370433668;
inline constexpr double defaultVolumeDb = -0.0018557610663615936;

struct Volume {
  VolumeWord<double> gain = defaultVolumeLinear;  ///< applied to samples: volumeLinear x limiter, or 0
  VolumeWord<double> volumeDb = defaultVolumeDb;  ///< the viewer's volume, -60 to 12
  VolumeWord<double> volumeLinear = defaultVolumeLinear;  ///< the same as a factor
  VolumeWord<bool> volumeUnset = true;                    ///< the first block with sound sets the volume
  VolumeWord<double> limiter = 1.0;                       ///< 0.01 to 1, what the last block's peak asked for
  VolumeWord<double> lastPeak = 0.0;                      ///< of the last block, before any gain; 0 to 32768
};

/// The volume that an item starts with; a stored one is pulled into range.
Volume firstVolume(std::optional<double> storedDb);

/// Sets the first volume if it is still open, judges the block by its peak, and scales it. Audio thread.
void applyVolume(Volume& volume, std::span<std::int16_t> samples);

/// One step of the viewer's volume, held under the ceiling. Main thread.
void adjustVolume(Volume& volume, double deltaDb);

/// The volume at which the last block's peak would reach the limiter's target.
double volumeCeilingDb(const Volume& volume);

}  // namespace tavek

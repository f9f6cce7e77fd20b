#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace tavek {

/// What a device is opened for: interleaved 16-bit samples.
struct DeviceWish {
  int channels = 2;
  int rate = 48000;
  /// More than two channels only if sink and device agree to it in every way.
  bool strict = false;
};

/// An open playback device. One thread's own: each call may hang for as long as a driver or a sound server
/// does.
class PcmDevice {
 public:
  PcmDevice() = default;
  /// Closes it at once.
  virtual ~PcmDevice() = default;
  PcmDevice(const PcmDevice&) = delete;
  PcmDevice& operator=(const PcmDevice&) = delete;

  /// What it takes in the end, which can be fewer channels than wished for.
  virtual int channels() const = 0;
  /// For each slot of the device the channel that it takes; empty when the order is the same.
  virtual const std::vector<std::size_t>& channelMap() const = 0;

  /// Takes what there is room for, after a wait up to the limit: a count of frames, 0 for no room, -1 when
  /// the device is gone.
  virtual std::ptrdiff_t write(std::span<const std::int16_t> samples, std::chrono::milliseconds limit) = 0;
  /// Frames that were taken and are not heard yet.
  virtual std::ptrdiff_t delay() = 0;
  /// Forgets them, and is ready for others.
  virtual void drop() = 0;
  /// Plays them to the end.
  virtual void drain() = 0;
};

/// Throws std::runtime_error when no device can be had.
using PcmDeviceFactory = std::function<std::unique_ptr<PcmDevice>(const DeviceWish&)>;

}  // namespace tavek

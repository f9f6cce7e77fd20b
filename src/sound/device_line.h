#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <thread>
#include <vector>

#include "base/clock.h"
#include "base/guarded.h"
#include "base/process_flags.h"
#include "sound/pcm_device.h"
#include "sound/sample_ring.h"

namespace tavek {

/// The way to a device, with the one thread that ever calls it: opening, writing and all else may hang in a
/// driver or a sound server, and then only that thread does. Samples wait for it in a ring of a tenth of a
/// second. A device that can't be had, or is gone, is tried again every two seconds.
///
/// push() is the audio thread's, everything else the owner's; no call but push() waits, and none waits for
/// the device.
class DeviceLine {
 public:
  DeviceLine(DeviceWish wish, PcmDeviceFactory factory, Clock& clock);
  /// Leaves the thread behind if it hangs; see finish().
  ~DeviceLine();
  DeviceLine(const DeviceLine&) = delete;
  DeviceLine& operator=(const DeviceLine&) = delete;

  enum class Pushed {
    All,
    Nothing,  ///< no device takes sound now; whoever has some lets its time go by
    Again,    ///< the device is another one, so the samples may have to be made anew
  };
  /// In the device's order of channels, made for `generation`. Waits until they are on their way.
  Pushed push(std::span<const std::int16_t> samples, unsigned generation);
  /// Ends a push that waits, now and for ever.
  void interrupt();

  /// The device as it is opened, by a number that grows with each opening. Waits a moment for the first one.
  struct Opened {
    unsigned generation = 0;
    int channels = 2;
    std::vector<std::size_t> channelMap;
  };
  unsigned generation();
  Opened opened() const;

  /// Drops all that is not heard yet.
  void flush();
  /// The device stops at once; what is not heard yet is kept and comes first at the resume.
  void hold();
  void resume();
  /// Gives the device back, and takes it again.
  void close();
  void reopen();
  /// Lets the device play what it holds, but does not wait for one that stands still; at once if told to
  /// drop.
  void finish(bool drop);

  /// Sound comes out of a device.
  bool heard() const;
  /// Pushed and not yet heard.
  std::chrono::microseconds delay() const;

 private:
  enum class Phase {
    Opening,  ///< for the first time
    Open,
    Absent,  ///< can't be had, or was taken for gone; tried again from time to time
    Closed,  ///< given back
  };
  enum class Ending { None, Drain, Drop };

  /// What both sides know. Its thread keeps it alive, wherever it hangs.
  struct State {
    Phase phase = Phase::Opening;
    Ending ending = Ending::None;
    bool held = false;
    bool holdWanted = false;  ///< the device has still to give back what it holds
    bool flushWanted = false;
    unsigned flushes = 0;
    bool closeWanted = false;
    bool openWanted = true;
    bool ended = false;
    Opened opened;
    SampleRing ring;                 ///< on its way to the device
    SampleRing played;               ///< what the device took last, and may not have played yet
    std::ptrdiff_t deviceDelay = 0;  ///< frames, when it was asked last
    Clock::Time askedAt;
    Clock::Time movedAt;  ///< when the device took something, or had no need to
    Clock::Time absentSince;
  };
  struct Shared {
    Shared(DeviceWish w, PcmDeviceFactory f, Clock& c) : wish(w), factory(std::move(f)), clock(c) {}
    const DeviceWish wish;
    const PcmDeviceFactory factory;
    Clock& clock;
    Guarded<State> state;
    std::condition_variable changed;
    Flag interrupted;
  };
  class Worker;

  static std::chrono::microseconds spanOf(std::ptrdiff_t frames, int rate);
  bool standsStill(const State& state) const;
  template <typename Change>
  void change(Change change);

  std::shared_ptr<Shared> shared_;
  std::shared_ptr<Flag> ended_;
  std::thread thread_;
};

}  // namespace tavek

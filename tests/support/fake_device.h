#pragma once

#include <deque>
#include <stdexcept>

#include "base/background_job.h"
#include "base/clock.h"
#include "base/guarded.h"
#include "sound/pcm_device.h"
#include "support/wait.h"

namespace tavek::test {

/// A sound card that plays by a clock, half a second ahead, keeps what was heard, and fails as it is told.
class FakeSound {
 public:
  explicit FakeSound(Clock& clock) : clock_(clock) {}
  ~FakeSound() { end(); }

  struct Faults {
    bool refuses = false;      ///< no device can be opened
    bool hangs = false;        ///< no call returns until this is over
    bool standsStill = false;  ///< it takes nothing and plays nothing
    bool gone = false;         ///< a write fails
  };
  void fail(Faults faults) { state_.hold()->faults = faults; }
  void setMostChannels(int channels) { state_.hold()->mostChannels = channels; }

  /// Whoever plays on it may have left a thread that plays out, which a clock that stands would never end.
  /// False if one still hangs.
  bool end() {
    fail({.gone = true});
    return joinLeftThreads(std::chrono::seconds(5));
  }

  /// All samples that came out, frame by frame.
  std::vector<std::int16_t> heard() {
    auto state = state_.hold();
    play(*state);
    return state->heard;
  }
  int timesOpened() { return state_.hold()->opened; }
  DeviceWish wish() { return state_.hold()->wish; }

  PcmDeviceFactory factory() {
    return [this](const DeviceWish& wish) -> std::unique_ptr<PcmDevice> {
      waitWhileHanging();
      auto state = state_.hold();
      if (state->faults.refuses || state->faults.gone) throw std::runtime_error("no device");
      ++state->opened;
      state->wish = wish;
      state->channels = std::min(wish.channels, state->mostChannels);
      state->queue.clear();
      state->playedUntil = clock_.now();
      return std::make_unique<Device>(*this, state->channels);
    };
  }

 private:
  struct State {
    Faults faults;
    int mostChannels = 6, opened = 0;
    DeviceWish wish;
    int channels = 2;
    std::deque<std::int16_t> queue;
    std::vector<std::int16_t> heard;
    Clock::Time playedUntil;
  };

  class Device final : public PcmDevice {
   public:
    Device(FakeSound& sound, int channels) : sound_(sound), channels_(channels) {}
    int channels() const override { return channels_; }
    const std::vector<std::size_t>& channelMap() const override { return map_; }
    std::ptrdiff_t write(std::span<const std::int16_t> samples, std::chrono::milliseconds limit) override {
      sound_.waitWhileHanging();
      std::ptrdiff_t taken = 0;
      waitUntil(std::chrono::duration<double>(limit).count(),
                [&] { return (taken = sound_.take(samples)) != 0; });
      return taken;
    }
    std::ptrdiff_t delay() override {
      return static_cast<std::ptrdiff_t>(sound_.played()->queue.size()) / channels_;
    }
    void drop() override { sound_.played()->queue.clear(); }
    void drain() override {
      auto state = sound_.played();
      state->heard.insert(state->heard.end(), state->queue.begin(), state->queue.end());
      state->queue.clear();
    }

   private:
    FakeSound& sound_;
    const int channels_;
    const std::vector<std::size_t> map_;
  };

  void waitWhileHanging() {
    while (state_.hold()->faults.hangs) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  /// The state as it is now, once no call hangs.
  Guarded<State>::Held<State> played() {
    waitWhileHanging();
    auto state = state_.hold();
    play(*state);
    return state;
  }

  std::ptrdiff_t take(std::span<const std::int16_t> samples) {
    auto state = state_.hold();
    if (state->faults.gone) return -1;
    play(*state);
    if (state->faults.standsStill) return 0;
    const auto channels = static_cast<std::size_t>(state->channels);
    const std::size_t room = static_cast<std::size_t>(state->wish.rate / 2) * channels - state->queue.size();
    const std::size_t count = std::min(room, samples.size()) / channels * channels;
    state->queue.insert(state->queue.end(), samples.begin(),
                        samples.begin() + static_cast<std::ptrdiff_t>(count));
    return static_cast<std::ptrdiff_t>(count / channels);
  }

  void play(State& state) {
    const Clock::Time now = clock_.now();
    const auto us = std::chrono::duration_cast<std::chrono::microseconds>(now - state.playedUntil).count();
    const auto frames = static_cast<std::size_t>(std::max<std::int64_t>(us * state.wish.rate / 1'000'000, 0));
    // What is less than a frame stays for the next time.
    if (frames == 0) return;
    const std::size_t count = std::min(frames * static_cast<std::size_t>(state.channels), state.queue.size());
    state.playedUntil = now;
    if (state.faults.standsStill) return;
    const auto end = state.queue.begin() + static_cast<std::ptrdiff_t>(count);
    state.heard.insert(state.heard.end(), state.queue.begin(), end);
    state.queue.erase(state.queue.begin(), end);
  }

  Clock& clock_;
  Guarded<State> state_;
};

}  // namespace tavek::test

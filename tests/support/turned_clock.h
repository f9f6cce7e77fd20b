#pragma once

#include <condition_variable>
#include <set>

#include "base/clock.h"
#include "base/guarded.h"

namespace tavek::test {

/// A clock that stands until the thread that made it sleeps, or turns it. Its sleep takes no real time but
/// what the others need that it wakes, and a `breath` for those that wait for something else. Another
/// thread's sleep lasts until the clock gets there, but no longer than 50 ms of real time, so that no test
/// hangs.
class TurnedClock final : public Clock {
 public:
  explicit TurnedClock(std::chrono::microseconds breath = {}) : breath_(breath) {}

  Time now() const override { return state_.hold()->now; }

  void sleepUntil(Time time) override {
    if (std::this_thread::get_id() == owner_) return turnTo(time);
    auto state = state_.hold();
    const auto sleeper = state->sleepers.insert(time);
    asleep_.notify_all();
    turned_.wait_for(state.lock(), longestSleep, [&] { return state->now >= time; });
    state->sleepers.erase(sleeper);
    woken_.notify_all();
  }

  void turn(std::chrono::microseconds span) { turnTo(now() + span); }

 private:
  static constexpr std::chrono::milliseconds longestSleep{50};

  struct State {
    Time now{std::chrono::hours(1)};
    std::multiset<Time> sleepers;
    bool sleeperIsDue() const { return !sleepers.empty() && *sleepers.begin() <= now; }
  };

  void turnTo(Time time) {
    {
      auto state = state_.hold();
      const std::size_t sleepers = state->sleepers.size();
      state->now = std::max(state->now, time);
      turned_.notify_all();
      woken_.wait_for(state.lock(), longestSleep, [&] { return !state->sleeperIsDue(); });
      // Who sleeps step by step is to be asleep again before the next turn, or it would miss that.
      asleep_.wait_for(state.lock(), longestSleep / 5, [&] { return state->sleepers.size() >= sleepers; });
    }
    if (breath_.count() > 0) std::this_thread::sleep_for(breath_);
  }

  const std::chrono::microseconds breath_;
  const std::thread::id owner_ = std::this_thread::get_id();
  Guarded<State> state_;
  std::condition_variable turned_, woken_, asleep_;
};

}  // namespace tavek::test

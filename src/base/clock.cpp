#include "base/clock.h"

#include <cerrno>
#include <ctime>

namespace tavek {
namespace {

class SteadyClock final : public Clock {
 public:
  Time now() const override { return Time::clock::now(); }
  void sleepUntil(Time time) override {
    const auto us = std::chrono::duration_cast<std::chrono::microseconds>(time - now()).count();
    if (us <= 0) return;
    timespec left{static_cast<time_t>(us / 1'000'000), static_cast<long>(us % 1'000'000) * 1000};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
  }
};

}  // namespace

std::uint64_t Clock::ticksMs() const {
  const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(now().time_since_epoch());
  return static_cast<std::uint64_t>(since.count());
}

Clock& steadyClock() {
  static SteadyClock clock;
  return clock;
}

}  // namespace tavek

#include "sound/device_line.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "base/background_job.h"

namespace tavek {
namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

/// No wait is longer without a look at what else is wanted.
constexpr milliseconds longestWait{50};
/// A device that takes nothing for so long is gone, and one that is gone is tried again after as long.
constexpr std::chrono::seconds patience{2};
/// The first sound of an item waits so long for the device; from then on it goes by unheard.
constexpr milliseconds firstOpening{300};
/// A device that stands still is not waited for at the end.
constexpr milliseconds endPatience{200};
constexpr int slicesPerSecond = 20;
constexpr int ringsPerSecond = 10;

std::size_t samplesOf(std::ptrdiff_t frames, int channels) {
  return static_cast<std::size_t>(std::max<std::ptrdiff_t>(frames, 0)) * static_cast<std::size_t>(channels);
}

}  // namespace

/// The thread's side.
class DeviceLine::Worker {
 public:
  explicit Worker(std::shared_ptr<Shared> shared) : shared_(std::move(shared)) {}

  void run() {
    while (step()) {
    }
    end();
  }

 private:
  /// One thing at a time, so that no call of the device is made with the lock held.
  bool step() {
    auto state = shared_->state.hold();
    if (state->ending == Ending::Drop ||
        (state->ending == Ending::Drain && (!device_ || state->ring.size() == 0)))
      return false;
    if (device_ && state->phase == Phase::Absent) return closeDevice(state);
    if (std::exchange(state->flushWanted, false) && device_) return dropAll(state);
    if (std::exchange(state->holdWanted, false) && device_) return takeBack(state);
    if (std::exchange(state->closeWanted, false)) return closeDevice(state);
    if (wantsOpening(*state)) return openDevice(state);
    if (!device_) return rest(state);
    if (state->held || state->ring.size() == 0) return rest(state);
    return writeSlice(state);
  }

  using HeldState = Guarded<State>::Held<State>;

  bool wantsOpening(const State& state) const {
    if (device_ || state.phase == Phase::Closed) return false;
    return state.openWanted || shared_->clock.now() - state.absentSince >= patience;
  }

  bool rest(HeldState& state) {
    shared_->changed.wait_for(state.lock(), longestWait / 5);
    if (!device_) return true;
    // A device that has nothing to play does not stand still.
    state->movedAt = shared_->clock.now();
    ask(state);
    return true;
  }

  bool openDevice(HeldState& state) {
    state->openWanted = false;
    state.lock().unlock();
    std::unique_ptr<PcmDevice> device;
    try {
      device = shared_->factory(shared_->wish);
    } catch (const std::exception&) {
      // It is tried again.
    }
    state.lock().lock();
    // It was given back while it was being opened.
    if (state->phase == Phase::Closed) return giveBack(state, std::move(device));
    const Clock::Time now = shared_->clock.now();
    if (!device) return lose(state, now);
    device_ = std::move(device);
    const int channels = device_->channels();
    const bool sameKind = state->opened.generation > 0 && state->opened.channels == channels &&
                          state->opened.channelMap == device_->channelMap();
    if (!sameKind) {
      ++state->opened.generation;
      state->opened.channels = channels;
      state->opened.channelMap = device_->channelMap();
      const std::size_t second = samplesOf(shared_->wish.rate, channels);
      state->ring = SampleRing(second);
      state->played = SampleRing(second);
    }
    slice_.resize(samplesOf(std::max(shared_->wish.rate / slicesPerSecond, 1), channels));
    state->phase = Phase::Open;
    state->deviceDelay = 0;
    state->played.clear();
    state->askedAt = state->movedAt = now;
    shared_->changed.notify_all();
    return true;
  }

  bool closeDevice(HeldState& state) {
    if (state->phase != Phase::Closed) state->ring.clear();
    state->deviceDelay = 0;
    return giveBack(state, std::move(device_));
  }

  bool giveBack(HeldState& state, std::unique_ptr<PcmDevice> device) {
    state.lock().unlock();
    device.reset();
    state.lock().lock();
    return true;
  }

  bool dropAll(HeldState& state) {
    state->played.clear();
    state->deviceDelay = 0;
    state.lock().unlock();
    device_->drop();
    state.lock().lock();
    return true;
  }

  /// The device's sound goes back to the head of the ring.
  bool takeBack(HeldState& state) {
    state.lock().unlock();
    const std::ptrdiff_t unheard = device_->delay();
    device_->drop();
    state.lock().lock();
    // A seek may have come meanwhile.
    if (!state->flushWanted)
      state->ring.prependNewest(state->played, samplesOf(unheard, device_->channels()));
    state->played.clear();
    state->deviceDelay = 0;
    return true;
  }

  bool writeSlice(HeldState& state) {
    const std::size_t count = state->ring.copyFront(slice_);
    state.lock().unlock();
    const std::ptrdiff_t taken = device_->write(std::span(slice_).first(count), longestWait);
    const std::ptrdiff_t delay = taken >= 0 ? device_->delay() : 0;
    state.lock().lock();
    const Clock::Time now = shared_->clock.now();
    if (taken < 0) return lose(state, now);
    if (taken > 0) state->movedAt = now;
    if (now - state->movedAt >= patience) return lose(state, now);
    state->askedAt = now;
    const std::size_t gone = samplesOf(taken, device_->channels());
    if (!state->flushWanted) {
      state->deviceDelay = delay;
      state->played.pushBackForgetting(std::span(slice_).first(gone));
      state->ring.popFront(gone);
    }
    shared_->changed.notify_all();
    return true;
  }

  bool lose(HeldState& state, Clock::Time now) {
    state->phase = Phase::Absent;
    state->absentSince = now;
    shared_->changed.notify_all();
    return true;
  }

  void ask(HeldState& state) {
    state.lock().unlock();
    const std::ptrdiff_t delay = device_->delay();
    state.lock().lock();
    if (!state->flushWanted && !state->holdWanted) state->deviceDelay = delay;
    state->askedAt = shared_->clock.now();
  }

  void end() {
    const bool drain = shared_->state.hold()->ending == Ending::Drain;
    if (device_ && drain) device_->drain();
    device_.reset();
    shared_->state.hold()->ended = true;
    shared_->changed.notify_all();
  }

  const std::shared_ptr<Shared> shared_;
  std::unique_ptr<PcmDevice> device_;
  std::vector<std::int16_t> slice_;
};

DeviceLine::DeviceLine(DeviceWish wish, PcmDeviceFactory factory, Clock& clock)
    : shared_(std::make_shared<Shared>(wish, std::move(factory), clock)), ended_(std::make_shared<Flag>()) {
  const auto state = shared_->state.hold();
  state->absentSince = state->movedAt = state->askedAt = clock.now();
  thread_ = std::thread([shared = shared_, ended = ended_]() mutable {
    Worker(std::move(shared)).run();
    *ended = true;
  });
}

DeviceLine::~DeviceLine() {
  interrupt();
  if (*ended_) {
    thread_.join();
  } else {
    leaveThread(std::move(thread_), ended_);
  }
}

template <typename Change>
void DeviceLine::change(Change change) {
  change(*shared_->state.hold());
  shared_->changed.notify_all();
}

bool DeviceLine::standsStill(const State& state) const {
  return !state.held && shared_->clock.now() - state.movedAt >= patience;
}

DeviceLine::Pushed DeviceLine::push(std::span<const std::int16_t> samples, unsigned generation) {
  auto state = shared_->state.hold();
  const std::size_t limit = samplesOf(shared_->wish.rate / ringsPerSecond, state->opened.channels);
  const unsigned flushes = state->flushes;
  while (!samples.empty()) {
    if (shared_->interrupted || stopSignalled) return Pushed::All;
    // The rest belongs to what was dropped.
    if (state->flushes != flushes) return Pushed::All;
    if (state->phase == Phase::Open && standsStill(*state)) {
      state->phase = Phase::Absent;
      state->absentSince = shared_->clock.now();
    }
    if (state->phase != Phase::Open) return Pushed::Nothing;
    if (state->opened.generation != generation) return Pushed::Again;
    if (!state->held && state->ring.size() < limit) {
      const auto part = samples.first(std::min(samples.size(), limit - state->ring.size()));
      state->ring.pushBack(part);
      samples = samples.subspan(part.size());
      shared_->changed.notify_all();
    } else {
      shared_->changed.wait_for(state.lock(), longestWait);
    }
  }
  return Pushed::All;
}

void DeviceLine::interrupt() {
  shared_->interrupted = true;
  shared_->changed.notify_all();
}

unsigned DeviceLine::generation() {
  auto state = shared_->state.hold();
  const auto worthAWait = [&] {
    return state->phase == Phase::Opening && !shared_->interrupted && !stopSignalled &&
           shared_->clock.now() - state->absentSince < firstOpening;
  };
  while (worthAWait()) shared_->changed.wait_for(state.lock(), longestWait);
  return state->phase == Phase::Open ? state->opened.generation : 0;
}

DeviceLine::Opened DeviceLine::opened() const {
  return shared_->state.hold()->opened;
}

void DeviceLine::flush() {
  change([](State& state) {
    state.flushWanted = true;
    ++state.flushes;
    state.ring.clear();
    state.deviceDelay = 0;
  });
}

void DeviceLine::hold() {
  change([](State& state) {
    if (!state.held) state.holdWanted = state.phase == Phase::Open;
    state.held = true;
  });
}

void DeviceLine::resume() {
  change([now = shared_->clock.now()](State& state) {
    state.held = false;
    state.movedAt = now;
    if (state.phase == Phase::Absent) state.openWanted = true;
  });
}

void DeviceLine::close() {
  change([](State& state) {
    state.phase = Phase::Closed;
    state.closeWanted = true;
  });
}

void DeviceLine::reopen() {
  change([now = shared_->clock.now()](State& state) {
    if (state.phase != Phase::Closed) return;
    state.phase = Phase::Opening;
    state.absentSince = now;
    state.openWanted = true;
  });
}

void DeviceLine::finish(bool drop) {
  auto left = delay();
  auto state = shared_->state.hold();
  // In a pause nothing sounds, so nothing has to end.
  drop = drop || state->held;
  if (drop) left = microseconds(0);
  state->ending = drop || state->phase != Phase::Open ? Ending::Drop : Ending::Drain;
  shared_->changed.notify_all();
  // By the machine's time: a device that plays does so by it.
  shared_->changed.wait_for(state.lock(), left + endPatience, [&] { return state->ended || stopSignalled; });
}

bool DeviceLine::heard() const {
  const auto state = shared_->state.hold();
  return state->phase == Phase::Open && !standsStill(*state);
}

microseconds DeviceLine::spanOf(std::ptrdiff_t frames, int rate) {
  return microseconds(std::int64_t{frames} * 1'000'000 / std::max(rate, 1));
}

microseconds DeviceLine::delay() const {
  const auto state = shared_->state.hold();
  const auto queued = static_cast<std::ptrdiff_t>(state->ring.size()) / std::max(state->opened.channels, 1);
  const auto since = std::chrono::duration_cast<microseconds>(shared_->clock.now() - state->askedAt);
  const microseconds inDevice = spanOf(state->deviceDelay, shared_->wish.rate);
  return spanOf(queued, shared_->wish.rate) + std::max(inDevice - since, microseconds(0));
}

}  // namespace tavek

#include "lights/hue_lights.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <iostream>
#include <utility>

#include "base/background_job.h"
#include "base/guarded.h"
#include "lights/hue_url.h"
#include "scan/web_connection.h"

namespace tavek {
namespace {

constexpr std::size_t mostWaiting = 4;
constexpr std::chrono::milliseconds requestLimit{2000};
constexpr std::chrono::milliseconds endLimit{1000};
constexpr std::chrono::milliseconds signalLook{50};

struct HueRequest {
  std::string url, body;
};

}  // namespace

/// What the owner and the worker know; the worker keeps it alive.
struct HueLights::Shared {
  struct State {
    std::deque<HueRequest> queue;
    bool over = false;  ///< nothing more will come
    bool done = false;  ///< the worker has sent all
  };
  Guarded<State> state;
  std::condition_variable changed;
  Flag abandoned;  ///< ends a request in the middle
};

HueLights::HueLights(StoredDevices& devices) : devices_(devices), shared_(std::make_shared<Shared>()) {}

void HueLights::hueTriggerPlay() {
  if (std::exchange(huePlaying_, true)) return;
  const HueSettings settings = devices_.hueSettings();
  auto url = buildHueUrl(settings);
  huePlaying_ = url.has_value();
  if (!url) return;
  std::string body = huePlayBody(settings);
  tell("play", settings, body);
  enqueueHueRequest(std::move(*url), std::move(body));
}

void HueLights::hueTriggerPause() {
  if (!std::exchange(huePlaying_, false)) return;
  const HueSettings settings = devices_.hueSettings();
  auto url = buildHueUrl(settings);
  if (!url) return;
  std::string body = huePauseBody(settings);
  tell("pause", settings, body);
  enqueueHueRequest(std::move(*url), std::move(body));
}

void HueLights::tell(const char* what, const HueSettings& settings, const std::string& body) const {
  if (!debugEnabled) return;
  std::cout << "[Hue] " << what << " trigger\n[Hue] url=" << maskedHueUrl(settings)
            << "\n[Hue] payload=" << body << std::endl;
}

void HueLights::enqueueHueRequest(std::string url, std::string body) {
  if (stopSignalled) return;
  {
    const auto state = shared_->state.hold();
    // A bridge that is gone must not be told an evening's story when it comes back.
    if (state->queue.size() == mostWaiting) state->queue.pop_front();
    state->queue.push_back({std::move(url), std::move(body)});
  }
  shared_->changed.notify_all();
  if (worker_.joinable()) return;
  ended_ = std::make_shared<Flag>();
  worker_ = std::thread([shared = shared_, ended = ended_] {
    run(*shared);
    *ended = true;
  });
}

void HueLights::run(Shared& shared) {
  WebConnection connection(shared.abandoned);
  auto state = shared.state.hold();
  for (;;) {
    shared.changed.wait(state.lock(), [&] { return state->over || !state->queue.empty(); });
    if (state->queue.empty() || stopSignalled) break;
    const HueRequest request = std::move(state->queue.front());
    state->queue.pop_front();
    state.lock().unlock();
    connection.ask({.url = request.url,
                    .headers = {"Content-Type: application/json"},
                    .method = "PUT",
                    .posted = &request.body,
                    .whole = requestLimit,
                    .connect = requestLimit,
                    .longestBody = 64U << 10,
                    .publicOnly = false,
                    .take = [](std::string_view) { return true; }});
    state.lock().lock();
  }
  state->done = true;
  shared.changed.notify_all();
}

void HueLights::stopHueWorker() {
  if (!worker_.joinable()) return;
  {
    auto state = shared_->state.hold();
    state->over = true;
    shared_->changed.notify_all();
    const auto end = std::chrono::steady_clock::now() + endLimit;
    while (!state->done && !stopSignalled && std::chrono::steady_clock::now() < end)
      shared_->changed.wait_for(state.lock(), signalLook);
  }
  shared_->abandoned = true;
  leaveThread(std::move(worker_), std::move(ended_));
}

}  // namespace tavek

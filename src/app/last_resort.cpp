#include "app/last_resort.h"

#include <chrono>
#include <cstdlib>

#include "state/state_store.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds look{50};
/// For the regular end, with all its threads and the sound that is still to be heard.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr milliseconds patience{5000};
#else
constexpr milliseconds patience{700};
#endif

}  // namespace

LastResort::LastResort(StateStore& state) : thread_([this, &state] { watch(state); }) {}

LastResort::~LastResort() {
  over_ = true;
  thread_.join();
}

void LastResort::watch(StateStore& state) const {
  milliseconds waited{0};
  while (!over_ && waited < patience) {
    std::this_thread::sleep_for(look);
    if (stopSignalled || quitRequested) waited += look;
  }
  if (over_) return;
  state.flush();
  std::_Exit(EXIT_SUCCESS);
}

}  // namespace tavek

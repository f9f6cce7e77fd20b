#pragma once

#include <optional>

#include "base/background_job.h"
#include "base/clock.h"
#include "base/process_flags.h"
#include "display/display.h"

/// The screen while the main thread has to know something that only the disk can tell.
namespace tavek {

/// One pass with nothing to play since a time: keys work. A wait that is over soon leaves the picture as it
/// was; one that lasts shows that it does.
inline void liveOn(Display& display, Clock& clock, Clock::Time since) {
  constexpr std::chrono::milliseconds soon{250};
  constexpr std::chrono::milliseconds pass{10};
  if (clock.now() - since >= soon) display.presentBlank();
  clock.sleepFor(pass);
}

/// What the job has found out. None if it ends without a word, or if the viewer would rather go home, or
/// quits.
template <typename Message>
std::optional<Message> awaitOnScreen(Display& display, Clock& clock, BackgroundJob<Message>& job) {
  const Clock::Time since = clock.now();
  for (;;) {
    const bool last = !job.running();
    if (auto message = job.take()) return message;
    if (last || quitRequested || stopSignalled) return {};
    if (display.pollInput() == NavCode::GoHome) return {};
    liveOn(display, clock, since);
  }
}

}  // namespace tavek

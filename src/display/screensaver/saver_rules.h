#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

#include <SDL.h>

#include "library/fan_art.h"

/// When the screensaver runs, how strong it is, and which slide stands. Times are milliseconds of the
/// display's clock; 0 stands for none.
namespace tavek {

/// The time without a key after which it starts.
inline constexpr Uint64 idleMs = 300'000;

/// A picture that runs keeps it away. The first call starts the count.
bool idleTooLong(Uint64& lastActivityAt, bool running, Uint64 nowMs);

/// Its way in and out. It turns round from the strength that it has, and then still takes its full time.
struct SaverFade {
  bool active = false;  ///< over at once with the key that wakes
  bool target = false;
  double from = 0;
  double alpha = 0;
  Uint64 startedAt = 0;  ///< 0 when no fade runs

  void start(Uint64 nowMs);
  void end(Uint64 nowMs);
  /// True in the call that ends the way out.
  bool advance(Uint64 nowMs);

  bool running() const { return startedAt != 0; }
  /// Still, or already, to be seen or about to be.
  bool on() const { return active || alpha > 0 || running(); }
  /// Nothing shows through.
  bool full() const { return active && target && !running() && alpha >= 0.999; }
  /// What it leaves of the picture below.
  double videoVisibility() const { return active || alpha > 0 ? 1 - alpha : 1; }
};

/// The slide that stands.
struct SlideClock {
  std::size_t current = 0;
  Uint64 startedAt = 0;  ///< also of its cross-fade; 0 before the first one

  /// It has had its minute.
  bool over(Uint64 nowMs) const;
  /// 0 to 1.
  double crossfade(Uint64 nowMs) const;
};
std::size_t slideAfter(std::size_t index, std::size_t count);
/// Takes a slide out of the list; the one that stands stays the same one, if it can.
void eraseSlide(std::vector<Slide>& slides, SlideClock& clock, std::size_t index);

/// The size that slides are decoded at: a little more than the window, so that they cover it.
SDL_Point slideArea(SDL_Point window);
/// Where a slide of a size lies.
SDL_Rect slidePlace(SDL_Point window, SDL_Point size);

/// Where to look for fan art when the current folder has none; that folder itself if there is no other.
std::filesystem::path otherSlideFolder(const std::filesystem::path& current,
                                       const std::vector<std::filesystem::path>& rooms);

}  // namespace tavek

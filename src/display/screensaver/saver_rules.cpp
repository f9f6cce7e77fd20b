#include "display/screensaver/saver_rules.h"

#include <algorithm>
#include <cstdlib>

#include "base/paths.h"
#include "display/toolkit/fade.h"
#include "library/media_paths.h"

namespace tavek {
namespace {

constexpr Uint64 slideMs = 60'000;
constexpr double overlap = 1.01;

Uint64 since(Uint64 start, Uint64 nowMs) {
  return nowMs > start ? nowMs - start : 0;
}

double progressOf(Uint64 start, Uint64 nowMs) {
  return std::min(1.0, static_cast<double>(since(start, nowMs)) / static_cast<double>(fadeMs));
}

}  // namespace

bool idleTooLong(Uint64& lastActivityAt, bool running, Uint64 nowMs) {
  if (running) return false;
  if (lastActivityAt == 0) lastActivityAt = nowMs;
  return since(lastActivityAt, nowMs) >= idleMs;
}

void SaverFade::start(Uint64 nowMs) {
  *this = {.active = true, .target = true, .from = alpha, .alpha = alpha, .startedAt = nowMs};
}

void SaverFade::end(Uint64 nowMs) {
  if (active || alpha > 0) *this = {.from = alpha, .alpha = alpha, .startedAt = nowMs};
}

bool SaverFade::advance(Uint64 nowMs) {
  if (!running()) return false;
  const double progress = progressOf(startedAt, nowMs);
  alpha = from + ((target ? 1.0 : 0.0) - from) * progress;
  if (progress < 1) return false;
  startedAt = 0;
  from = alpha;
  return !target;
}

bool SlideClock::over(Uint64 nowMs) const {
  return since(startedAt, nowMs) >= slideMs;
}

double SlideClock::crossfade(Uint64 nowMs) const {
  return progressOf(startedAt, nowMs);
}

std::size_t slideAfter(std::size_t index, std::size_t count) {
  return count == 0 ? 0 : (index + 1) % count;
}

void eraseSlide(std::vector<Slide>& slides, SlideClock& clock, std::size_t index) {
  slides.erase(slides.begin() + static_cast<std::ptrdiff_t>(index));
  if (index < clock.current) --clock.current;
  if (clock.current >= slides.size()) clock.current = slides.empty() ? 0 : slides.size() - 1;
}

SDL_Point slideArea(SDL_Point window) {
  return {static_cast<int>(window.x * overlap), static_cast<int>(window.y * overlap)};
}

SDL_Rect slidePlace(SDL_Point window, SDL_Point size) {
  const double scale =
      overlap * std::max(static_cast<double>(window.x) / size.x, static_cast<double>(window.y) / size.y);
  SDL_Point shown{static_cast<int>(size.x * scale), static_cast<int>(size.y * scale)};
  // One that was decoded for this window is copied as it is: scaling it by a pixel costs more than it shows.
  if (std::abs(shown.x - size.x) <= 1 && std::abs(shown.y - size.y) <= 1) shown = size;
  return {(window.x - shown.x) / 2, (window.y - shown.y) / 2, shown.x, shown.y};
}

std::filesystem::path otherSlideFolder(const std::filesystem::path& current,
                                       const std::vector<std::filesystem::path>& rooms) {
  const auto isSeries = [](const std::filesystem::path& folder) { return seriesRootOf(folder).has_value(); };
  if (rooms.empty()) return isSeries(current) ? mediaRoot() / "movies" : tvRoot();
  for (const std::filesystem::path& room : rooms) {
    if (room != current && isSeries(room) != isSeries(current)) return room;
  }
  const auto other = std::ranges::find_if(rooms, [&](const auto& room) { return room != current; });
  return other != rooms.end() ? *other : current;
}

}  // namespace tavek

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <SDL.h>

/// When the screensaver comes and goes, which slide it shows, and what its captions say. Milliseconds of the
/// display's clock.
namespace tavek {

inline constexpr Uint64 idleMs = 300'000;
inline constexpr Uint64 slideMs = 60'000;
inline constexpr Uint64 saverFadeMs = 500;
/// Slides stand at half strength, so that no screen is worn by them.
inline constexpr int slideAlpha = 128;

/// Its strength. Turned around in mid-way, it goes on from where it stands and takes the whole time again.
class SaverFade {
 public:
  void start(bool on, Uint64 nowMs);
  /// True in the one pass in which a fade out ends.
  bool advance(Uint64 nowMs);
  double alpha() const { return alpha_; }
  bool on() const { return target_; }
  /// It hides everything else.
  bool full() const { return target_ && !running_ && alpha_ >= 0.999; }

 private:
  double from_ = 0;
  double alpha_ = 0;
  bool target_ = false;
  bool running_ = false;
  Uint64 startedAt_ = 0;
};

/// Goes through the slides, a minute each; a cross-fade between two.
class SlideClock {
 public:
  void reset() { *this = {}; }
  /// The first slide, or the next one, can be shown.
  void begin(Uint64 nowMs);
  bool begun() const { return startedAt_.has_value(); }
  /// Tells one showing of a slide from the next; none before the first.
  std::optional<Uint64> startedAt() const { return startedAt_; }
  /// The minute is over.
  bool due(Uint64 nowMs) const { return startedAt_ && nowMs >= *startedAt_ + slideMs; }
  void next(std::size_t count, Uint64 nowMs);
  /// The slide at `index` is gone; `count` are left.
  void erase(std::size_t index, std::size_t count);

  std::size_t current() const { return current_; }
  std::optional<std::size_t> previous(Uint64 nowMs) const;
  /// How far the cross-fade is, 0 to 1.
  double crossfade(Uint64 nowMs) const;

 private:
  std::size_t current_ = 0;
  std::optional<std::size_t> previous_;
  std::optional<Uint64> startedAt_;
};

struct TitleYear {
  std::string title;
  std::string year;  ///< four digits, or empty
  bool operator==(const TitleYear&) const = default;
};
/// "Blade Runner (1982)".
TitleYear splitTitleYear(std::string_view text);

/// "4K", "FHD", "HD", or nothing for less.
const char* resolutionBadge(int width, int height);

}  // namespace tavek

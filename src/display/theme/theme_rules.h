#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <SDL.h>

/// Which show's theme is to sound, and when. Milliseconds of the display's clock.
namespace tavek {

/// What the screen shows.
struct ThemeFacts {
  bool tvRoom = false;
  bool videoPlaying = false;
  bool stripAny = false;                            ///< the strip is in any state but closed
  const std::filesystem::path* selected = nullptr;  ///< the poster's; null without a valid selection
};

/// The show below the strip's selection, or why there is none.
struct ThemeCandidate {
  std::filesystem::path folder;
  std::string_view reason;
};

inline constexpr std::string_view themeMissing = "skip: theme missing";

/// Follows the selection from pass to pass. A theme starts once the selection has rested, is cut when another
/// show is selected, and plays once for as long as the selection stays in its show.
class ThemeChoice {
 public:
  enum class Act { None, Start, Stop };
  /// Start: candidate().folder's theme is to sound from its beginning.
  Act follow(const ThemeFacts& facts, Uint64 nowMs);
  const ThemeCandidate& candidate() const { return candidate_; }
  /// All is over, and what is selected next starts anew. True if a theme was asked for.
  bool reset();

 private:
  const ThemeCandidate& themeCandidate(const ThemeFacts& facts);

  std::string selected_;  ///< that candidate_ was worked out for
  ThemeCandidate shown_;  ///< of that selection
  ThemeCandidate candidate_;
  Uint64 selectedAt_ = 0;
  Uint64 lastSeenAt_ = 0;                 ///< a selection
  std::filesystem::path themeRequested_;  ///< the show of the last Start; outlives the theme's end
};

}  // namespace tavek

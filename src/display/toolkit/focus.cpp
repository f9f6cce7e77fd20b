#include "display/toolkit/focus.h"

#include <array>
#include <cstddef>

namespace tavek {
namespace {

constexpr std::array focusTexts = {"Home",       "Movie",    "Tv",         "Music",    "Poster",
                                   "Seek",       "Settings", "UsersTab",   "AudioTab", "BluetoothTab",
                                   "NetworkTab", "HueTab",   "Screensaver"};
static_assert(focusTexts.size() == static_cast<std::size_t>(FocusName::Screensaver) + 1);

}  // namespace

FocusName focusOf(const FocusFacts& facts) {
  if (facts.saverActive) return FocusName::Screensaver;
  if (facts.settings) return *facts.settings;
  if (facts.homeMode) return facts.chooserOpen ? FocusName::UsersTab : FocusName::Home;
  if (facts.musicWithAudio()) return facts.stripAny ? FocusName::Poster : FocusName::Music;
  if (!facts.stripShown) return facts.seekFocus ? FocusName::Seek : FocusName::Movie;
  return facts.roomKind == MediaKind::Series ? FocusName::Tv : FocusName::Poster;
}

const char* focusText(FocusName focus) {
  const auto index = static_cast<std::size_t>(focus);
  return index < focusTexts.size() ? focusTexts[index] : "Unknown";
}

}  // namespace tavek

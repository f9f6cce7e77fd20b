#pragma once

#include <cstdint>
#include <optional>

#include "library/media_kind.h"

namespace tavek {

/// Who gets the keys. Never stored as a state that handlers switch: it follows from the facts.
enum class FocusName : std::int32_t {
  Home = 0,
  Movie = 1,
  Tv = 2,
  Music = 3,
  Poster = 4,
  Seek = 5,
  Settings = 6,
  UsersTab = 7,
  AudioTab = 8,
  BluetoothTab = 9,
  NetworkTab = 10,
  HueTab = 11,
  Screensaver = 12,
};

/// What the screens show, in one snapshot.
struct FocusFacts {
  bool saverActive = false;                ///< the screensaver runs
  std::optional<FocusName> settings = {};  ///< they lie over everything, with this focus
  bool homeMode = false;                   ///< the home screen has the screen
  bool chooserOpen = false;                ///< its users can be chosen, over an item too
  MediaKind roomKind = MediaKind::Movies;
  bool audioItem = false;   ///< the current item is an audio file
  bool stripShown = false;  ///< it covers the picture's lower part
  bool stripAny = false;    ///< it is in any state but closed
  bool seekFocus = false;   ///< a seek key is down
  bool videoPlaying = true;
  bool videoPaused = false;  ///< by the viewer

  bool musicWithAudio() const { return roomKind == MediaKind::Music && audioItem; }
  bool running() const { return videoPlaying && !videoPaused; }
};

FocusName focusOf(const FocusFacts& facts);
/// As the "[FOCUS]" lines write it.
const char* focusText(FocusName focus);

}  // namespace tavek

#pragma once

#include <cstdint>

#include "display/strip/strip_state.h"
#include "library/media_kind.h"

namespace tavek {

/// Who gets the keys. Never stored as a state that handlers switch: it follows from the flags.
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

enum class SettingsTab : std::int32_t { Users = 0, Audio = 1, Bluetooth = 2, Network = 3, Hue = 4 };

/// The flags of the screens as the input sees them.
struct NavFlags {
  bool screensaverActive = false;
  bool settingsOpen = false;
  int settingsFocus = 0;  ///< 0 is the row of tabs
  SettingsTab settingsTab = SettingsTab::Audio;
  bool huePageOpen = false;
  bool networkPageOpen = false;
  bool bluetoothPageOpen = false;
  bool homeMode = false;
  bool chooserOpen = false;
  MediaKind roomKind = MediaKind::Movies;
  bool audioItem = false;  ///< the current item is an audio file
  StripState strip;
  bool selectionSettling = false;  ///< the strip has just gone to another poster by itself; held keys wait
  bool seekFocus = false;          ///< a seek key is down
  bool videoPlaying = true;
  bool videoPaused = false;  ///< by the viewer

  bool anyPage() const { return huePageOpen || networkPageOpen || bluetoothPageOpen; }
  bool tvRoom() const { return roomKind == MediaKind::Series; }
  bool musicWithAudio() const { return roomKind == MediaKind::Music && audioItem; }
  bool running() const { return videoPlaying && !videoPaused; }
};

FocusName focusOf(const NavFlags& flags);
/// As the "[FOCUS]" lines write it.
const char* focusText(FocusName focus);

}  // namespace tavek

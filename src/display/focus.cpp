#include "display/focus.h"

#include <array>
#include <cstddef>

namespace tavek {
namespace {

constexpr std::array focusTexts = {"Home",       "Movie",    "Tv",         "Music",    "Poster",
                                   "Seek",       "Settings", "UsersTab",   "AudioTab", "BluetoothTab",
                                   "NetworkTab", "HueTab",   "Screensaver"};
static_assert(focusTexts.size() == static_cast<std::size_t>(FocusName::Screensaver) + 1);

FocusName settingsFocusOf(const NavFlags& flags) {
  if (flags.settingsFocus == 0) return FocusName::Settings;
  switch (flags.settingsTab) {
    case SettingsTab::Users:
      return FocusName::UsersTab;
    case SettingsTab::Audio:
      return FocusName::AudioTab;
    case SettingsTab::Bluetooth:
      return FocusName::BluetoothTab;
    case SettingsTab::Network:
      return FocusName::NetworkTab;
    case SettingsTab::Hue:
      return FocusName::HueTab;
  }
  return FocusName::Settings;
}

}  // namespace

FocusName focusOf(const NavFlags& flags) {
  if (flags.screensaverActive) return FocusName::Screensaver;
  if (flags.settingsOpen) return settingsFocusOf(flags);
  if (flags.huePageOpen) return FocusName::HueTab;
  if (flags.networkPageOpen) return FocusName::NetworkTab;
  if (flags.bluetoothPageOpen) return FocusName::BluetoothTab;
  if (flags.homeMode) return flags.chooserOpen ? FocusName::UsersTab : FocusName::Home;
  if (flags.musicWithAudio()) return flags.strip.any() ? FocusName::Poster : FocusName::Music;
  if (!flags.strip.shown()) return flags.seekFocus ? FocusName::Seek : FocusName::Movie;
  return flags.tvRoom() ? FocusName::Tv : FocusName::Poster;
}

const char* focusText(FocusName focus) {
  const auto index = static_cast<std::size_t>(focus);
  return index < focusTexts.size() ? focusTexts[index] : "Unknown";
}

}  // namespace tavek

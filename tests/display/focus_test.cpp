#include "display/focus.h"

#include <string>

#include <gtest/gtest.h>

namespace tavek {
namespace {

TEST(Focus, FollowsFromTheFlagsInTheirOrder) {
  const struct {
    const char* name;
    void (*set)(NavFlags&);
  } cases[] = {
      {"Movie", [](NavFlags&) {}},
      {"Seek", [](NavFlags& f) { f.seekFocus = true; }},
      {"Home", [](NavFlags& f) { f.homeMode = f.seekFocus = true; }},
      {"UsersTab", [](NavFlags& f) { f.homeMode = f.chooserOpen = true; }},
      {"Movie", [](NavFlags& f) { f.chooserOpen = true; }},
      {"Poster", [](NavFlags& f) { f.strip.visible = f.seekFocus = true; }},
      {"Poster", [](NavFlags& f) { f.strip.fadeIn = true; }},
      {"Movie", [](NavFlags& f) { f.strip.sliding = true; }},
      {"Tv", [](NavFlags& f) { f.strip.visible = true, f.roomKind = MediaKind::Series; }},
      {"Music", [](NavFlags& f) { f.audioItem = true, f.roomKind = MediaKind::Music; }},
      {"Movie", [](NavFlags& f) { f.roomKind = MediaKind::Music; }},
      {"Movie", [](NavFlags& f) { f.audioItem = true; }},
      {"Poster", [](NavFlags& f) { f.audioItem = f.strip.sliding = true, f.roomKind = MediaKind::Music; }},
      {"BluetoothTab", [](NavFlags& f) { f.bluetoothPageOpen = f.homeMode = true; }},
      {"NetworkTab", [](NavFlags& f) { f.networkPageOpen = f.bluetoothPageOpen = true; }},
      {"HueTab", [](NavFlags& f) { f.huePageOpen = f.networkPageOpen = true; }},
      {"Settings", [](NavFlags& f) { f.settingsOpen = f.huePageOpen = true; }},
      {"UsersTab",
       [](NavFlags& f) { f.settingsOpen = true, f.settingsFocus = 1, f.settingsTab = SettingsTab::Users; }},
      {"AudioTab", [](NavFlags& f) { f.settingsOpen = true, f.settingsFocus = 2; }},
      {"HueTab",
       [](NavFlags& f) { f.settingsOpen = true, f.settingsFocus = 1, f.settingsTab = SettingsTab::Hue; }},
      {"Settings",
       [](NavFlags& f) {
         f.settingsOpen = true, f.settingsFocus = 1, f.settingsTab = static_cast<SettingsTab>(9);
       }},
      {"Screensaver", [](NavFlags& f) { f.screensaverActive = f.settingsOpen = f.homeMode = true; }},
  };
  for (const auto& c : cases) {
    NavFlags flags;
    c.set(flags);
    EXPECT_STREQ(focusText(focusOf(flags)), c.name) << "case " << &c - cases;
  }
  EXPECT_STREQ(focusText(static_cast<FocusName>(99)), "Unknown");
}

}  // namespace
}  // namespace tavek

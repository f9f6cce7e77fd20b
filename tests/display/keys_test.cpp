// What keys mean on each screen, without a window.
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "display/display.h"
#include "state/state_store.h"
#include "support/media_root.h"
#include "support/turned_clock.h"

namespace tavek {
namespace {

using enum NavCode;
using std::chrono::milliseconds;

class KeysTest : public testing::Test {
 public:
  KeysTest() {
    SDL_setenv("SDL_VIDEODRIVER", "nothing", 1);
    testing::internal::CaptureStderr();
    display = std::make_unique<Display>(0, 0, 640, 360, Orientation::OrientationAuto, store.parts(), clock);
    testing::internal::GetCapturedStderr();
    SDL_InitSubSystem(SDL_INIT_EVENTS);
  }
  ~KeysTest() override {
    display.reset();
    SDL_QuitSubSystem(SDL_INIT_EVENTS);
  }

  /// The code that comes of an event.
  NavCode key(SDL_Keycode sym, bool down = true, bool repeat = false) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.keysym.sym = sym;
    event.key.repeat = repeat ? 1 : 0;
    SDL_PushEvent(&event);
    return display->pollInput();
  }
  void play() {
    display->leaveHome();
    display->setVideoPlaying(true);
    display->setVideoPaused(false);
  }
  void pause() {
    play();
    display->setVideoPlaying(false);
    display->setVideoPaused(true);
  }
  void browse() {
    play();
    display->setVideoPlaying(false);
    display->showStrip(true);
  }
  void goHome() { display->goHome(true); }
  void openTabs() {
    pause();
    display->toggleSettings(false);
  }
  void openAudio() {
    store.parts().settings.setSettingsTab("AUDIO");
    openTabs();
    key(SDLK_RETURN);
  }
  void chooseUser() {
    goHome();
    display->runChooser();
  }
  void playSong() {
    display->alignWithItem(test::library.path() / "music/a.mp3");
    display->selectRoomForPath(test::library.path() / "music/a.mp3");
    play();
  }

  test::TurnedClock clock;
  const test::TempFolder folder;
  const std::filesystem::path stateFile = folder.path() / "persist.json";
  StateStore store{stateFile};
  std::unique_ptr<Display> display;
};

TEST_F(KeysTest, EachKeyHasItsCodeOnEachScreen) {
  struct Row {
    SDL_Keycode sym;
    NavCode running, paused, strip, home, users, music, tabs, audio;
  };
  const Row rows[] = {
      {SDLK_AUDIOPLAY, TogglePause, TogglePause, TogglePause, VoiceStart, VoiceStart, TogglePause, None,
       None},
      {SDLK_LEFT, SeekBackward, VolumeDownPress, None, None, None, None, None, None},
      {SDLK_RIGHT, SeekForward, VolumeUpPress, None, None, None, None, None, None},
      {SDLK_UP, None, None, None, None, None, SeekBackward, None, AudioModeChanged},
      {SDLK_DOWN, None, None, None, None, None, SeekForward, None, AudioModeChanged},
      {SDLK_AUDIOREWIND, SeekBackward, SeekBackward, SeekBackward, None, None, SeekBackward, None, None},
      {SDLK_AUDIOFASTFORWARD, SeekForward, SeekForward, SeekForward, None, None, SeekForward, None, None},
      {SDLK_KP_ENTER, OpenPosters, OpenPosters, None, None, None, OpenPosters, None, AudioModeChanged},
      {SDLK_RETURN, OpenPosters, OpenPosters, None, None, None, OpenPosters, None, AudioModeChanged},
      {SDLK_MENU, ToggleSettings, None, None, None, None, ToggleSettings, None, None},
      {SDLK_AC_HOME, GoHome, None, None, None, None, GoHome, GoHome, GoHome},
      {SDLK_ESCAPE, None, None, ClosePosters, None, None, None, None, None},
      {SDLK_AC_BACK, None, None, ClosePosters, None, None, None, None, None},
      {SDLK_AC_SEARCH, None, None, VoiceStart, VoiceStart, VoiceStart, None, None, None},
      {SDLK_PRINTSCREEN, None, Snapshot, None, None, None, None, None, None},
      {SDLK_VOLUMEUP, None, None, None, None, None, None, None, None},
      {SDLK_q, None, None, None, None, None, None, None, None},
  };
  const struct {
    const char* name;
    void (KeysTest::*reach)();
    NavCode Row::*code;
  } screens[] = {
      {"a film", &KeysTest::play, &Row::running},        {"a pause", &KeysTest::pause, &Row::paused},
      {"the strip", &KeysTest::browse, &Row::strip},     {"home", &KeysTest::goHome, &Row::home},
      {"the users", &KeysTest::chooseUser, &Row::users}, {"music", &KeysTest::playSong, &Row::music},
      {"the tabs", &KeysTest::openTabs, &Row::tabs},     {"sound", &KeysTest::openAudio, &Row::audio},
  };
  for (const auto& screen : screens) {
    for (const Row& row : rows) {
      display->goHome(true);
      display->alignWithItem({});
      display->selectRoomForPath(test::library.path() / "movies/x");
      (this->*screen.reach)();
      display->pollInput();
      EXPECT_EQ(key(row.sym), row.*screen.code) << SDL_GetKeyName(row.sym) << " on " << screen.name;
      key(row.sym, false);
    }
  }
}

TEST_F(KeysTest, RepeatsAndReleases) {
  const struct {
    void (KeysTest::*reach)();
    SDL_Keycode sym;
    std::string events;  ///< down, again, up
    std::vector<NavCode> codes;
  } cases[] = {
      // A toggle that is sent twice counts once.
      {&KeysTest::play, SDLK_AUDIOPLAY, "ddaudu", {TogglePause, None, None, None, TogglePause, None}},
      // A running film drops the repeats of a seek key, and a pause takes them as volume.
      {&KeysTest::play, SDLK_RIGHT, "dau", {SeekForward, None, SeekCommit}},
      {&KeysTest::pause, SDLK_LEFT, "dau", {VolumeDownPress, VolumeDownPress, VolumeDownRelease}},
      {&KeysTest::play, SDLK_RETURN, "au", {None, None}},
      {&KeysTest::play, SDLK_AUDIOREWIND, "dau", {SeekBackward, SeekBackward, SeekCommit}},
  };
  for (const auto& c : cases) {
    (this->*c.reach)();
    display->pollInput();
    std::vector<NavCode> codes;
    for (const char event : c.events) codes.push_back(key(c.sym, event != 'u', event == 'a'));
    EXPECT_EQ(codes, c.codes) << SDL_GetKeyName(c.sym);
  }
}

TEST_F(KeysTest, AHeldSeekRepeatsByItself) {
  play();
  EXPECT_EQ(key(SDLK_LEFT), SeekBackward);
  std::vector<int> repeats;
  for (int ms = 5; ms < 700; ms += 5) {
    clock.turn(milliseconds(5));
    if (display->pollInput() == SeekBackward) repeats.push_back(ms);
  }
  EXPECT_EQ(repeats, (std::vector<int>{275, 405, 535, 665}));
  EXPECT_EQ(key(SDLK_LEFT, false), SeekCommit);
}

/// A key that came up unseen, or under another screen, ends what it has begun.
TEST_F(KeysTest, NothingRunsOnWhenItsKeyIsUp) {
  pause();
  EXPECT_EQ(key(SDLK_RIGHT), VolumeUpPress);
  display->showStrip(true);
  EXPECT_EQ(key(SDLK_RIGHT, false), VolumeUpRelease) << "the volume must not run to the end";
  EXPECT_EQ(key(SDLK_RIGHT, false), None);

  play();
  EXPECT_EQ(key(SDLK_RIGHT), SeekForward);
  display->showStrip(true);
  EXPECT_EQ(display->pollInput(), None);
  EXPECT_EQ(display->currentFocus(), FocusName::Poster);
  display->setVideoPlaying(true);
  EXPECT_EQ(display->currentFocus(), FocusName::Movie) << "no seek is left behind";
}

TEST_F(KeysTest, SettingsOpenAndCloseIntoWhatWasThere) {
  const std::pair<void (KeysTest::*)(), bool> cases[] = {
      {&KeysTest::play, true},    {&KeysTest::pause, false},      {&KeysTest::browse, false},
      {&KeysTest::goHome, false}, {&KeysTest::chooseUser, false}, {&KeysTest::playSong, true}};
  for (const auto& [reach, asksForPause] : cases) {
    goHome();
    (this->*reach)();
    const FocusName before = display->currentFocus();
    if (key(SDLK_MENU) == ToggleSettings) display->toggleSettings(true);
    EXPECT_EQ(display->currentFocus(), FocusName::Settings);
    EXPECT_EQ(display->takePauseToggle(), asksForPause) << focusText(before);
    for (const SDL_Keycode sym : {SDLK_AUDIOPLAY, SDLK_AUDIOREWIND, SDLK_APPLICATION})
      EXPECT_EQ(key(sym), None);
    EXPECT_EQ(display->currentFocus(), before);
    EXPECT_EQ(display->takePauseToggle(), asksForPause) << focusText(before);
  }
  play();
  display->toggleSettings(true);
  display->toggleSettings(true);
  EXPECT_FALSE(display->takePauseToggle()) << "closed before the player has heard of it";
}

/// Keys on the tabs and on the pages, with who has them afterwards.
TEST_F(KeysTest, TabsLeadToTheirPagesAndBack) {
  const struct {
    std::vector<SDL_Keycode> keys;
    FocusName focus;
    const char* remembered;
  } steps[] = {
      {{SDLK_LEFT, SDLK_LEFT}, FocusName::Settings, "audio"},
      {{SDLK_RETURN}, FocusName::UsersTab, "users"},
      {{SDLK_BACKSPACE, SDLK_RIGHT, SDLK_RIGHT}, FocusName::Settings, "users"},
      {{SDLK_RETURN}, FocusName::BluetoothTab, "bluetooth"},
      {{SDLK_AC_BACK, SDLK_RIGHT, SDLK_RETURN}, FocusName::NetworkTab, "network"},
      {{SDLK_AC_BACK, SDLK_RIGHT, SDLK_RIGHT, SDLK_KP_ENTER}, FocusName::HueTab, "hue"},
      {{SDLK_AC_BACK}, FocusName::Settings, "hue"},
      {{SDLK_RETURN}, FocusName::AudioTab, "hue"},
      {{SDLK_AC_BACK, SDLK_BACKSPACE}, FocusName::Home, "hue"},
  };
  goHome();
  store.parts().settings.setSettingsTab("audio");
  EXPECT_EQ(key(SDLK_MENU), None);
  for (const auto& step : steps) {
    for (const SDL_Keycode sym : step.keys) EXPECT_EQ(key(sym), None);
    EXPECT_EQ(display->currentFocus(), step.focus) << "step " << &step - steps;
    EXPECT_EQ(store.parts().settings.settingsTab(), step.remembered) << "step " << &step - steps;
  }
}

/// The way home and back in again.
TEST_F(KeysTest, WhatIsPressedOnTheWayHomeCounts) {
  store.parts().users.setActiveUser("Alex");
  play();
  EXPECT_EQ(key(SDLK_AC_HOME), GoHome);
  clock.turn(milliseconds(100));
  EXPECT_EQ(key(SDLK_RIGHT), None);
  EXPECT_EQ(store.parts().users.activeUser(), "Maria");
  EXPECT_EQ(key(SDLK_RETURN), None);
  EXPECT_EQ(key(SDLK_LEFT), None);
  EXPECT_EQ(store.parts().users.activeUser(), "Maria") << "a confirmed user stays";
  // The fade begins once the list of rooms is there, which takes its own time.
  int fadeMs = 0;
  for (; display->atHome() && fadeMs < 5000; ++fadeMs) {
    clock.turn(milliseconds(1));
    std::this_thread::sleep_for(milliseconds(1));
    display->pollInput();
  }
  EXPECT_GE(fadeMs, 500);
  EXPECT_FALSE(display->atHome());
  EXPECT_TRUE(display->stripShown());
  store.parts().users.setActiveUser("Alex");
}

/// The disk with the library was mounted when the users of none were on the screen.
TEST_F(KeysTest, UsersOfALibraryThatComesLateAreShown) {
  chooseUser();
  test::writeText(stateFile,
                  R"({"user": "Oma", "users": {"Oma": {"mode": "movies"}, "Opa": {"mode": "movies"}}})");
  for (int pass = 0; pass < 1000 && store.parts().users.activeUser() != "Oma"; ++pass) {
    clock.turn(milliseconds(20));
    std::this_thread::sleep_for(milliseconds(1));
    display->pollInput();
  }
  // The first may be meant for those who were there before, and then only shows the others.
  for (int press = 0; press < 2; ++press) EXPECT_EQ(key(SDLK_RIGHT), None);
  EXPECT_EQ(store.parts().users.activeUser(), "Opa");
}

}  // namespace
}  // namespace tavek

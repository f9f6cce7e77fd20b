// The screensaver in the whole of the window, with its clock turned.
#include <algorithm>
#include <fstream>
#include <functional>
#include <thread>

#include <SDL_image.h>
#include <gtest/gtest.h>

#include "base/background_job.h"
#include "display/display.h"
#include "state/state_store.h"
#include "support/media_root.h"
#include "support/offscreen.h"
#include "support/turned_clock.h"

namespace tavek {
namespace {

using enum NavCode;
using std::chrono::milliseconds;
using std::chrono::minutes;
namespace fs = std::filesystem;

class SaverTest : public testing::Test {
 public:
  SaverTest() {
    test::useOffscreenDriver();
    SDL_setenv("SDL_RENDER_DRIVER", "software", 1);
    fs::remove_all(films);
    fs::create_directories(films);
  }
  ~SaverTest() override {
    display.reset();
    joinLeftThreads(std::chrono::seconds(5));
    unsetenv("SDL_RENDER_DRIVER");
  }

  void make() {
    display = std::make_unique<Display>(0, 0, 640, 360, Orientation::OrientationAuto, store.parts(), clock);
    ASSERT_TRUE(display->usable());
  }
  NavCode key(SDL_Keycode sym, bool down = true, bool repeat = false) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.keysym.sym = sym;
    event.key.repeat = repeat ? 1 : 0;
    SDL_PushEvent(&event);
    return display->pollInput();
  }
  bool saves() const { return display->currentFocus() == FocusName::Screensaver; }
  void pass(milliseconds span) {
    clock.turn(span);
    display->pollInput();
    display->presentBlank();
  }
  /// Passes of 20 ms until it is so, or two seconds of real time have gone.
  bool passUntil(const std::function<bool()>& reached) {
    for (int i = 0; i < 2000 && !reached(); ++i) {
      pass(milliseconds(20));
      std::this_thread::sleep_for(milliseconds(1));
    }
    return reached();
  }
  void idle() {
    display->pollInput();
    clock.turn(minutes(5));
    display->pollInput();
  }
  Colour pixel() const { return test::pixelAt(display->renderer(), 320, 40); }
  bool shows(Colour colour) {
    return passUntil([&] { return pixel() == colour; });
  }

  fs::path art(const std::string& title, Colour colour) const {
    std::ofstream(films / (title + ".mkv")) << "x";
    const SurfacePtr picture(SDL_CreateRGBSurfaceWithFormat(0, 64, 36, 32, SDL_PIXELFORMAT_RGBA32));
    SDL_FillRect(picture.get(), nullptr, colour);
    const fs::path file = films / (title + ".fanart.png");
    IMG_SavePNG(picture.get(), file.c_str());
    return file;
  }

  void goHome() { display->goHome(true); }
  void chooseUser() {
    play();
    display->pollInput();
    key(SDLK_AC_HOME);
    key(SDLK_AC_HOME, false);
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
    display->showStrip();
  }
  void browseSeries() {
    display->selectRoomForPath(test::library.path() / "tv/x");
    browse();
  }
  void playSong() {
    display->alignWithItem(test::library.path() / "music/a.mp3");
    display->selectRoomForPath(test::library.path() / "music/a.mp3");
    play();
  }

  test::TurnedClock clock;
  const fs::path films = test::library.path() / "movies";
  const test::TempFolder folder;
  StateStore store{folder.path() / "persist.json"};
  std::unique_ptr<Display> display;
};

constexpr Colour halfRed = rgba(128, 0, 0), halfGreen = rgba(0, 128, 0);

TEST_F(SaverTest, TheKeyThatWakesDoesNothingElse) {
  make();
  const struct {
    const char* name;
    void (SaverTest::*reach)();
    NavCode enter;  ///< what the key means once the screen is awake
  } screens[] = {
      {"home", &SaverTest::goHome, None},           {"the users", &SaverTest::chooseUser, None},
      {"a pause", &SaverTest::pause, OpenPosters},  {"the strip", &SaverTest::browse, None},
      {"a series", &SaverTest::browseSeries, None}, {"music", &SaverTest::playSong, OpenPosters},
  };
  for (const auto& screen : screens) {
    SCOPED_TRACE(screen.name);
    display->goHome(true);
    display->alignWithItem({});
    display->selectRoomForPath(films / "x");
    (this->*screen.reach)();
    display->pollInput();
    const FocusName before = display->currentFocus();
    idle();
    ASSERT_TRUE(saves());
    EXPECT_EQ(key(SDLK_LEFT, false), None);
    EXPECT_EQ(key(SDLK_RETURN, true, true), None);
    EXPECT_TRUE(saves()) << "neither a release nor a repeat wakes";
    EXPECT_EQ(key(SDLK_RETURN), Wake);
    EXPECT_EQ(display->currentFocus(), before);
    EXPECT_EQ(key(SDLK_RETURN, true, true), None);
    clock.turn(milliseconds(600));
    EXPECT_EQ(key(SDLK_RETURN, true, true), None);
    EXPECT_EQ(key(SDLK_RETURN, false), None);
    EXPECT_EQ(display->currentFocus(), before);
    EXPECT_EQ(key(SDLK_RETURN), screen.enter);
    key(SDLK_RETURN, false);
  }
}

TEST_F(SaverTest, APictureThatRunsKeepsItAwayAndKeysPutItOff) {
  make();
  play();
  display->pollInput();
  clock.turn(minutes(200));
  display->pollInput();
  EXPECT_FALSE(saves());
  pause();
  clock.turn(minutes(4));
  key(SDLK_MENU);
  clock.turn(minutes(4));
  display->pollInput();
  EXPECT_FALSE(saves());
  clock.turn(minutes(1));
  display->pollInput();
  EXPECT_TRUE(saves());
  display->goHome(true);
  EXPECT_FALSE(saves());
}

TEST_F(SaverTest, SlidesComeAtHalfStrengthOverWhatWasThere) {
  art("Red", rgba(255, 0, 0));
  make();
  pause();
  const std::vector<std::uint8_t> luma(64 * 36, 235), chroma(32 * 18, 128);
  const auto present = [&] {
    display->presentFrame({.planes = {luma.data(), chroma.data(), chroma.data()},
                           .pitches = {64, 32, 32},
                           .width = 64,
                           .height = 36},
                          -1);
    return pixel();
  };
  idle();
  clock.turn(milliseconds(250));
  display->pollInput();
  EXPECT_NEAR(redOf(present()), 64, 8) << "half of what half the picture is";
  EXPECT_TRUE(shows(halfRed));
  clock.turn(minutes(1));
  EXPECT_TRUE(shows(halfRed)) << "a single slide follows itself";
  EXPECT_EQ(key(SDLK_q), Wake);
  clock.turn(milliseconds(600));
  display->pollInput();
  EXPECT_GT(greenOf(present()), 240);
}

TEST_F(SaverTest, WhatIsBrokenOrGoneIsLeftOut) {
  art("A", rgba(255, 0, 0));
  art("B", 0);
  std::ofstream(films / "B.fanart.png") << "no picture";
  art("C", rgba(0, 255, 0));
  make();
  goHome();
  idle();
  EXPECT_TRUE(shows(halfRed));
  pass(milliseconds(600));
  clock.turn(minutes(1));
  EXPECT_TRUE(shows(halfGreen)) << "the broken one is passed over";
  fs::remove_all(films);
  clock.turn(minutes(1));
  EXPECT_TRUE(shows(theme::black)) << "what is gone does not stand";
  fs::create_directories(films);
  art("D", rgba(255, 0, 0));
  clock.turn(minutes(1));
  EXPECT_TRUE(shows(halfRed)) << "new art is found";
}

/// Tracks follow each other by themselves, which is no sign of a viewer.
TEST_F(SaverTest, OverMusicItShowsTheTrack) {
  make();
  playSong();
  display->pollInput();
  clock.turn(minutes(4));
  display->setVideoPlaying(false);
  display->setVideoPlaying(true);
  clock.turn(minutes(1));
  display->pollInput();
  ASSERT_TRUE(saves());
  pass(milliseconds(600));
  const auto lit = [&](const SDL_Rect& area) {
    return std::ranges::any_of(test::pixelsOf(display->renderer(), area),
                               [](Colour colour) { return colour != theme::black; });
  };
  EXPECT_TRUE(lit({40, 290, 60, 40})) << "the name of the file, for a track without a title";
  EXPECT_FALSE(lit({0, 0, 640, 280}));
}

TEST_F(SaverTest, WithoutSlidesItIsBlack) {
  make();
  goHome();
  idle();
  EXPECT_TRUE(passUntil([&] { return pixel() == theme::black; }));
  EXPECT_TRUE(saves());
}

}  // namespace
}  // namespace tavek

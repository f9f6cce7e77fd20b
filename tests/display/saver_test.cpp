#include <gtest/gtest.h>

#include "base/process_flags.h"
#include "display/display.h"
#include "display/screensaver/idle_scans.h"
#include "display/screensaver/saver_rules.h"
#include "state/state_store.h"
#include "support/media_root.h"
#include "support/offscreen.h"
#include "support/table.h"
#include "support/turned_clock.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;

TEST(SaverRules, FadeTurnsAroundWhereItStands) {
  SaverFade fade;
  fade.start(true, 1000);
  EXPECT_FALSE(fade.advance(1250) || fade.full());
  EXPECT_DOUBLE_EQ(fade.alpha(), 0.5);
  fade.start(false, 1250);
  EXPECT_FALSE(fade.advance(1500));
  EXPECT_DOUBLE_EQ(fade.alpha(), 0.25);
  fade.start(true, 1500);
  EXPECT_FALSE(fade.advance(2000));
  EXPECT_TRUE(fade.full());
  fade.start(false, 5000);
  EXPECT_TRUE(fade.advance(5500)) << "told once";
  EXPECT_FALSE(fade.advance(5600));
}

TEST(SaverRules, SlidesStandForAMinute) {
  SlideClock clock;
  EXPECT_FALSE(clock.due(900'000));
  clock.begin(1000);
  EXPECT_FALSE(clock.due(60'999));
  EXPECT_TRUE(clock.due(61'000));
  clock.next(3, 61'000);
  EXPECT_EQ(clock.current(), 1U);
  EXPECT_EQ(clock.previous(61'499), 0U);
  EXPECT_EQ(clock.previous(61'500), std::nullopt);
  clock.next(3, 121'000);
  clock.erase(1, 2);
  EXPECT_EQ(std::pair(clock.current(), clock.previous(121'001)),
            std::pair(std::size_t{1}, std::optional<std::size_t>()));
  clock.next(2, 181'000);
  EXPECT_EQ(clock.current(), 0U);
  clock.next(1, 241'000);
  EXPECT_EQ(clock.current(), 0U) << "one slide goes into itself";
}

TEST(SaverRules, TitlesAndBadges) {
  for (const auto& [text, title, year] : test::table<3>(R"(
      Blade Runner (1982) => Blade Runner => 1982 ;; Das Boot ( 1981 ) => Das Boot => 1981 ;; 1982 => 1982
      Film (19825) => Film (19825) ;; Film (abcd) => Film (abcd) ;; (1982) => (1982))"))
    EXPECT_EQ(splitTitleYear(" " + text + " "), (TitleYear{title, year})) << text;
  const std::tuple<int, int, std::string> badges[] = {
      {3840, 2160, "4K"}, {2160, 3840, "4K"}, {3840, 1600, "FHD"}, {1920, 1080, "FHD"},
      {1920, 800, "HD"},  {1280, 720, "HD"},  {1279, 720, ""},     {0, 0, ""}};
  for (const auto& [width, height, badge] : badges) EXPECT_EQ(resolutionBadge(width, height), badge) << width;
}

TEST(IdleScans, AskOnceAndThenOnceAnHour) {
  std::vector<std::string> asked;
  const ScanRequests requests{[&](const auto& room) { asked.push_back("tmdb " + room.string()); },
                              [&](const auto& room) { asked.push_back("tv " + room.string()); }};
  IdleScans scans;
  using enum MediaKind;
  const std::tuple<const char*, MediaKind, Uint64, std::vector<std::string>> steps[] = {
      {"/m/films", Movies, 1000, {"tmdb /m/films", "tmdb /m/films"}},
      {"/m/x/../films", Movies, 3'600'999, {}},
      {"/m/films", Movies, 500, {}},
      {"/m/films", Movies, 3'601'000, {"tmdb /m/films"}},
      {"/m/shows", Series, 2000, {"tv /m/shows", "tv /m/shows"}},
      {"/m/Kids", Series, 2000, {"tmdb /m/Kids", "tmdb /m/Kids"}},
      {"/m/songs", Music, 2000, {}},
      {"/m/clips", Videos, 2000, {}},
  };
  for (const auto& [room, kind, at, expected] : steps) {
    asked.clear();
    requestScans(scans, requests, room, kind, at);
    EXPECT_EQ(asked, expected) << room << " at " << at;
  }
  requestScans(scans, {}, "/m/more", Movies, 2000);
}

struct SaverTest : testing::Test {
  SaverTest() { test::writeText(film, "x"); }
  ~SaverTest() override { quitRequested = false; }

  NavCode key(SDL_Keycode sym, bool down = true, bool repeat = false) {
    SDL_Event event{};
    event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
    event.key.keysym.sym = sym;
    event.key.repeat = repeat;
    SDL_PushEvent(&event);
    return display.pollInput();
  }
  /// As a pass of whatever loop draws.
  void pass(milliseconds after) {
    clock.turn(after);
    display.pollInput();
    display.presentBlank();
  }

  const fs::path film = test::library.path() / "movies/Red (1982)/Red (1982).mkv";
  const fs::path song = test::library.path() / "music/a.mp3";
  const bool offscreen = (test::useOffscreenDriver(), true);
  test::TurnedClock clock;
  StateStore store{""};
  Display display{0, 0, 320, 180, Orientation::OrientationAuto, store.parts(), clock};
};

TEST_F(SaverTest, AKeyOnlyWakes) {
  const std::tuple<const char*, std::function<void()>, bool> states[] = {
      {"home", [&] { display.goHome(true); }, true},
      {"a film that runs", [&] { display.setVideoPlaying(true); }, false},
      {"a pause", [&] { display.setVideoPlaying(false), display.setVideoPaused(true); }, true},
      {"the strip", [&] { display.setVideoPlaying(false), display.showStrip(true); }, true},
      {"a song", [&] { display.alignWithItem(song), display.setVideoPlaying(true); }, true},
  };
  for (const auto& [what, reach, comes] : states) {
    SCOPED_TRACE(what);
    display.leaveHome();
    display.alignWithItem({});
    reach();
    pass(milliseconds(10));
    const FocusName before = display.currentFocus();
    pass(milliseconds(299'000));
    EXPECT_EQ(display.currentFocus(), before);
    pass(milliseconds(2000));
    EXPECT_EQ(display.currentFocus() == FocusName::Screensaver, comes);
    if (!comes) continue;
    pass(milliseconds(250));
    EXPECT_EQ(key(SDLK_RETURN, true, true), NavCode::None) << "a key that was held before";
    EXPECT_EQ(key(SDLK_RIGHT), NavCode::Wake);
    EXPECT_EQ(key(SDLK_RIGHT, true, true), NavCode::None);
    EXPECT_EQ(key(SDLK_RIGHT, false), NavCode::None);
    EXPECT_EQ(display.currentFocus(), before);
    EXPECT_EQ(key(SDLK_RETURN), NavCode::Wake) << "it still fades";
    pass(milliseconds(600));
    EXPECT_EQ(key(SDLK_RETURN, true, true), NavCode::None);
    EXPECT_EQ(key(SDLK_RETURN, false), NavCode::None);
    EXPECT_EQ(display.currentFocus(), before);
    display.hideStrip();
    pass(milliseconds(300));
  }
}

TEST_F(SaverTest, SongsThatFollowEachOtherKeepNobodyAwake) {
  display.leaveHome();
  display.alignWithItem(song);
  display.setVideoPlaying(true);
  pass(milliseconds(10));
  pass(milliseconds(200'000));
  display.setVideoPlaying(false);
  display.setVideoPlaying(true);
  pass(milliseconds(100'000));
  EXPECT_EQ(display.currentFocus(), FocusName::Screensaver);
}

TEST_F(SaverTest, SlidesStandAtHalfStrengthUntilTheyVanish) {
  const fs::path films = test::library.path() / "movies", broken = films / "Broken/fanart.png";
  const std::string red = test::png(640, 360, rgba(255, 0, 0));
  test::writeText(films / "Red (1982)/fanart.png", red);
  test::writeText(films / "Broken/Broken.mkv", "x");
  test::writeText(broken, "no picture");
  display.goHome(true);
  for (int i = 0; i < 400 && display.currentFolder().filename() != "movies"; ++i, SDL_Delay(1))
    pass(milliseconds(1));
  pass(milliseconds(300'000));
  const auto turns = [&](Colour colour) {
    const auto middle = [&] { return test::pixelAt(display.renderer(), 160, 40); };
    for (int i = 0; i < 2000 && middle() != colour; ++i, SDL_Delay(1)) pass(milliseconds(10));
    return middle() == colour;
  };
  EXPECT_TRUE(turns(rgba(128, 0, 0)));
  fs::remove_all(film.parent_path());
  pass(milliseconds(600));
  pass(milliseconds(60'000));
  EXPECT_TRUE(turns(theme::black)) << "its file is gone";
  fs::remove(broken);
  test::writeText(broken, red);
  pass(milliseconds(60'000));
  EXPECT_TRUE(turns(rgba(128, 0, 0))) << "new art is found";
}

}  // namespace
}  // namespace tavek

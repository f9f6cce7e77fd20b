#include <gtest/gtest.h>

#include "display/playback/clear_logo.h"
#include "display/playback/pause_icon.h"
#include "display/playback/seek_bar.h"
#include "display/playback/volume_bar.h"
#include "display/toolkit/colour.h"
#include "display/toolkit/fade.h"
#include "display/toolkit/time_text.h"
#include "support/media_root.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

using test::writeText;

FrameContext frameAt(const test::Offscreen& screen, Uint64 nowMs) {
  screen.clear();
  return {screen.renderer(), screen.font(), 1280, 720, nowMs};
}

TEST(OverlaysTest, TimesAreWrittenWithHoursOnlyFromOneHourOn) {
  const std::pair<std::int64_t, const char*> times[] = {
      {-1, "0:00"}, {7, "0:07"}, {3599, "59:59"}, {3600, "1:00:00"}, {36061, "10:01:01"}};
  for (const auto& [seconds, text] : times) EXPECT_EQ(formatTime(seconds * 1'000'000), text);
}

TEST(OverlaysTest, FadesRunForHalfASecondAfterTheChange) {
  FadePair pair;
  // At 1050 the clock is behind the stamp, and at last all is at rest.
  const std::tuple<bool, Uint64, double> steps[] = {
      {false, 1000, 0.0}, {true, 1100, 0.0},  {true, 1050, 0.0},  {true, 1350, 0.5}, {true, 9000, 1.0},
      {false, 9100, 1.0}, {false, 9350, 0.5}, {false, 9600, 0.0}, {false, 9350, 0.0}};
  for (const auto& [shown, nowMs, alpha] : steps) EXPECT_EQ(advanceFade(pair, shown, nowMs), alpha) << nowMs;
}

TEST(SeekBarTest, LayoutLeavesRoomForTheWiderSideText) {
  const SeekBarLayout bare = seekBarLayout(1280, 720, 0.25, {});
  EXPECT_EQ(bare.track, (SDL_Rect{70, 620, 1160, 6}));
  EXPECT_EQ(bare.knob.x, 70 + 290);
  const SeekBarLayout full = seekBarLayout(1280, 720, 1.0, {{50, 31}, {90, 31}, {60, 31}});
  EXPECT_EQ(full.played, (SDL_Rect{130, 620, 1040, 6}));
  EXPECT_EQ(full.position.x, 130 - 50 - 40);
  EXPECT_EQ(full.position.y, 620 - 12);
  EXPECT_EQ(full.duration.x, 130 + 475);
  EXPECT_EQ(full.remaining.x, 1280 - 60 - 30);
  EXPECT_EQ(seekBarLayout(100, 720, 1.0, {}).track.w, 0);
}

TEST(SeekBarTest, BarStandsWhileAskedForAndFadesAfterwards) {
  const test::Offscreen screen;
  constexpr std::int64_t middle = 50'000'000;
  SeekBar bar;
  bar.setDuration(2 * middle);
  bar.show(1000);
  const auto trackAt = [&](Uint64 nowMs, const SeekBarInput& input) -> int {
    bar.draw(frameAt(screen, nowMs), input);
    return greenOf(screen.pixel(1100, 622));
  };
  EXPECT_NEAR(trackAt(1250, {.positionUs = middle}), 110, 2);
  EXPECT_EQ(trackAt(1499, {.positionUs = -1}), 0);
  EXPECT_EQ(trackAt(1501, {.positionUs = middle}), 220) << "the fade out starts";
  EXPECT_EQ(trackAt(3000, {.positionUs = middle, .videoPaused = true}), 0) << "the fade in starts";
  EXPECT_EQ(trackAt(4000, {.positionUs = middle, .videoPaused = true, .stripShown = true}), 0);
  EXPECT_EQ(trackAt(5000, {.positionUs = middle, .seekFocus = true}), 220);
  EXPECT_EQ(trackAt(5500, {.positionUs = middle}), 220);
  EXPECT_EQ(trackAt(5501, {.positionUs = middle}), 220);
  EXPECT_NEAR(trackAt(5751, {.positionUs = middle}), 110, 2);
  bar.show(7000);
  FrameContext frame = frameAt(screen, 7500);
  frame.baseFont = nullptr;
  bar.draw(frame, {.positionUs = INT64_MAX, .videoPaused = true});
  EXPECT_EQ(screen.drawnArea(), (SDL_Rect{70, 588, 1160 + 36, 71})) << "no text, and the knob at the end";
  bar.setDuration(-5);
  bar.show(8000);
  EXPECT_EQ(trackAt(9000, {.positionUs = 0, .videoPaused = true}), 0) << "an item of unknown length";
}

TEST(VolumeBarTest, BarStandsFor800MillisecondsAfterAChange) {
  const test::Offscreen screen;
  VolumeBar bar;
  bar.show(0, -60.0, -60.0, 12.0, 1000);
  bar.draw(frameAt(screen, 1000));
  EXPECT_EQ(screen.pixel(640, 515), rgba(220, 220, 220));
  bar.show(250, 0.0, -60.0, 12.0, 1000);
  bar.draw(frameAt(screen, 1799));
  EXPECT_NEAR(redOf(screen.pixel(640, 515)), 220 * 55 / 255, 2) << "green over white";
  bar.draw(frameAt(screen, 1800));
  EXPECT_EQ(screen.drawnArea(), SDL_Rect{});
}

TEST(PauseIconTest, IconFadesFromTheKeyPressOn) {
  const test::Offscreen screen;
  PauseIcon icon;
  icon.setPaused(true, 1000);
  icon.setPaused(true, 1200);
  icon.draw(frameAt(screen, 1250), true);
  EXPECT_NEAR(redOf(screen.pixel(630, 360)), 127, 1);
  EXPECT_EQ(screen.pixel(640, 360), theme::black) << "the gap";
  icon.draw(frameAt(screen, 1500), true);
  EXPECT_EQ(screen.pixel(650, 360), theme::white);
}

TEST(ClearLogoTest, LogoShrinksToItsShareOfTheWindow) {
  EXPECT_EQ(clearLogoRect(1280, 720, {200, 100}), (SDL_Rect{540, 72, 200, 100}));
  EXPECT_EQ(clearLogoRect(1000, 500, {1200, 60}), (SDL_Rect{200, 50, 600, 30}));
  EXPECT_EQ(clearLogoRect(1920, 1000, {400, 360}), (SDL_Rect{860, 100, 200, 180}));
  EXPECT_EQ(episodeLinePlace(1280, 720, {540, 72, 200, 100}, {300, 40}).y, 180);
  EXPECT_EQ(episodeLinePlace(1280, 720, {0, 600, 9, 32}, {300, 60}).y, 640);
  EXPECT_EQ(episodeLinePlace(1280, 720, {0, 600, 9, 32}, {300, 61}).y, 639) << "lifted off the lower edge";
  EXPECT_EQ(episodeLinePlace(1280, 60, {0, 6, 9, 32}, {300, 50}).y, 20);
}

/// An episode, and the files where its logo may lie.
struct ClearLogoFileTest : testing::Test {
  ClearLogoFileTest() { fs::remove(showLogo); }

  /// Until the search has come to an end.
  void follow(ClearLogo& logo, const test::Offscreen& screen, fs::path video = {}) {
    if (video.empty()) video = episode;
    for (int i = 0; i < 3; ++i) {
      logo.follow(screen.renderer(), video, nowMs += 500);
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
    }
    logo.follow(screen.renderer(), video, nowMs);
  }

  Uint64 nowMs = 1000;
  const fs::path show = test::library.path() / "tv/Show", episode = show / "Season 2/S02E05 Pilot.mkv";
  const fs::path showLogo = show / "clearlogo.png";
};

TEST_F(ClearLogoFileTest, LogoBesideTheItemGoesBeforeTheShows) {
  const fs::path beside = show / "Season 2/clearlogo.png";
  EXPECT_FALSE(clearLogoFor(episode));
  writeText(showLogo, "x");
  writeText(beside, "");
  EXPECT_EQ(clearLogoFor(episode), showLogo) << "an empty file does not count";
  writeText(beside, "x");
  EXPECT_EQ(clearLogoFor(episode), beside);
  fs::remove(beside);
}

TEST_F(ClearLogoFileTest, UnreadableFileIsTriedAgainWhenItChanges) {
  const test::Offscreen screen(64, 64);
  ClearLogo logo;
  const std::string good = test::png(400, 100);
  writeText(showLogo, std::string(good.size(), 'x'));
  const auto changedAt = fs::last_write_time(showLogo);
  follow(logo, screen);
  writeText(showLogo, good);
  fs::last_write_time(showLogo, changedAt);
  follow(logo, screen);
  EXPECT_FALSE(logo.loaded()) << "not decoded again as long as it looks the same";
  fs::last_write_time(showLogo, changedAt + std::chrono::seconds(1));
  follow(logo, screen);
  EXPECT_TRUE(logo.loaded());
  logo.follow(screen.renderer(), test::library.path() / "movies/other.mkv", nowMs);
  follow(logo, screen, test::library.path() / "movies/other.mkv");
  EXPECT_FALSE(logo.loaded()) << "another item has none";
}

TEST_F(ClearLogoFileTest, LogoAndLineFadeOverAPausedPicture) {
  const test::Offscreen screen;
  writeText(showLogo, test::png(400, 100));
  ClearLogo logo;
  follow(logo, screen);
  const auto drawAfter = [&](Uint64 ms, const ClearLogoInput& input) {
    logo.draw(frameAt(screen, nowMs += ms), input, episode);
  };
  const ClearLogoInput hiding[] = {
      {}, {.videoPlaying = true, .stripOn = true}, {.videoPaused = true, .homeMode = true}};
  for (const ClearLogoInput& hides : hiding) {
    drawAfter(100, {.videoPaused = true});
    drawAfter(250, {.stripOn = true});
    EXPECT_NEAR(redOf(screen.pixel(640, 120)), 127, 1) << &hides - hiding;
    EXPECT_GT(screen.drawnArea().h, 100 + 8) << "the episode line, " << &hides - hiding;
    drawAfter(250, hides);
    drawAfter(500, hides);
    EXPECT_EQ(screen.drawnArea(), SDL_Rect{}) << &hides - hiding;
  }
  logo.setSuppressed(true);
  drawAfter(500, {.videoPaused = true});
  drawAfter(500, {.videoPaused = true});
  EXPECT_EQ(screen.drawnArea(), SDL_Rect{});
}

}  // namespace
}  // namespace tavek

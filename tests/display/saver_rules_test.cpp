#include "display/screensaver/saver_rules.h"

#include <gtest/gtest.h>

#include "display/screensaver/caption_layout.h"
#include "display/screensaver/idle_scans.h"
#include "display/screensaver/music_variant.h"
#include "support/media_root.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

TEST(SaverRules, IdleTimeCountsWhileNoPictureRuns) {
  Uint64 lastActivityAt = 0;
  EXPECT_FALSE(idleTooLong(lastActivityAt, true, 1'000));
  EXPECT_FALSE(idleTooLong(lastActivityAt, false, 500'000)) << "the first call starts the count";
  EXPECT_FALSE(idleTooLong(lastActivityAt, false, 799'999));
  EXPECT_FALSE(idleTooLong(lastActivityAt, true, 900'000));
  EXPECT_TRUE(idleTooLong(lastActivityAt, false, 800'000));
  EXPECT_FALSE(idleTooLong(lastActivityAt, false, 400'000)) << "a clock behind the stamp";
}

TEST(SaverRules, FadeTurnsRoundFromWhereItIs) {
  SaverFade fade;
  fade.end(500);
  EXPECT_FALSE(fade.on()) << "nothing to end";
  fade.start(1000);
  EXPECT_FALSE(fade.advance(900));
  EXPECT_EQ(fade.alpha, 0);
  EXPECT_TRUE(fade.on());
  EXPECT_FALSE(fade.advance(1200));
  EXPECT_DOUBLE_EQ(fade.alpha, 0.4);
  EXPECT_DOUBLE_EQ(fade.videoVisibility(), 0.6);
  EXPECT_FALSE(fade.full());
  fade.end(1200);
  EXPECT_FALSE(fade.active);
  fade.advance(1450);
  EXPECT_DOUBLE_EQ(fade.alpha, 0.2) << "the way out takes its full time";
  fade.start(1450);
  fade.advance(1700);
  EXPECT_DOUBLE_EQ(fade.alpha, 0.6);
  EXPECT_FALSE(fade.advance(1950));
  EXPECT_TRUE(fade.full());
  fade.end(9000);
  EXPECT_FALSE(fade.advance(9499));
  EXPECT_TRUE(fade.on());
  EXPECT_TRUE(fade.advance(9500)) << "over";
  EXPECT_FALSE(fade.on());
  EXPECT_EQ(fade.videoVisibility(), 1);
  EXPECT_FALSE(fade.advance(9600));
}

TEST(SaverRules, SlideStandsForItsMinuteAndSurvivesItsNeighbours) {
  const SlideClock clock{.startedAt = 1000};
  EXPECT_FALSE(clock.over(60'999));
  EXPECT_TRUE(clock.over(61'000));
  EXPECT_DOUBLE_EQ(clock.crossfade(1250), 0.5);
  EXPECT_DOUBLE_EQ(clock.crossfade(900), 0);
  EXPECT_EQ(slideAfter(2, 3), 0U);
  EXPECT_EQ(slideAfter(0, 1), 0U);
  const struct {
    std::size_t current, erased, after;
  } cases[] = {{1, 0, 0}, {1, 2, 1}, {1, 1, 1}, {2, 2, 1}, {0, 0, 0}};
  for (const auto& [current, erased, after] : cases) {
    std::vector<Slide> slides{{"a", ""}, {"b", ""}, {"c", ""}};
    SlideClock standing{.current = current, .startedAt = 1};
    eraseSlide(slides, standing, erased);
    EXPECT_EQ(slides.size(), 2U);
    EXPECT_EQ(standing.current, after) << current << " without " << erased;
  }
}

TEST(SaverRules, SlidesCoverTheWindow) {
  const struct {
    SDL_Point window, size;
    SDL_Rect place;
  } cases[] = {
      {{1920, 1080}, {1939, 1091}, {-9, -5, 1939, 1091}},
      {{1920, 1080}, {1280, 720}, {-9, -5, 1939, 1090}},
      {{1280, 720}, {1000, 1000}, {-6, -286, 1292, 1292}},
      {{720, 1280}, {1920, 1080}, {-789, -6, 2298, 1292}},
  };
  for (const auto& [window, size, place] : cases)
    EXPECT_EQ(slidePlace(window, size), place) << size.x << " in " << window.x;
}

TEST(SaverRules, OtherFolderIsOfTheOtherKind) {
  const std::filesystem::path root = test::library.path();
  const auto movies = root / "movies", kids = root / "kids", tv = root / "tv";
  const struct {
    std::filesystem::path current;
    std::vector<std::filesystem::path> rooms;
    std::filesystem::path other;
  } cases[] = {
      {movies, {}, tv},          {tv, {}, movies},           {movies, {kids, movies, tv}, tv},
      {tv, {tv, kids}, kids},    {movies, {movies}, movies}, {movies, {movies, kids}, kids},
      {tv / "a show", {tv}, tv},
  };
  for (const auto& [current, rooms, other] : cases)
    EXPECT_EQ(otherSlideFolder(current, rooms), other) << current << " of " << rooms.size();
}

TEST(IdleScans, AskOnceAndThenOnceAnHour) {
  std::vector<std::string> asked;
  const ScanRequests requests{[&](const auto& room) { asked.push_back("tmdb " + room.string()); },
                              [&](const auto& room) { asked.push_back("tv " + room.string()); }};
  IdleScans scans;
  const struct {
    const char* room;
    MediaKind kind;
    Uint64 at;
    std::vector<std::string> asked;
  } steps[] = {
      {"/m/films", MediaKind::Movies, 1000, {"tmdb /m/films", "tmdb /m/films"}},
      {"/m/x/../films", MediaKind::Movies, 3'600'999, {}},
      {"/m/films", MediaKind::Movies, 500, {}},
      {"/m/films", MediaKind::Movies, 3'601'000, {"tmdb /m/films"}},
      {"/m/shows", MediaKind::Series, 2000, {"tv /m/shows", "tv /m/shows"}},
      {"/m/Kids", MediaKind::Series, 2000, {"tmdb /m/Kids", "tmdb /m/Kids"}},
      {"/m/songs", MediaKind::Music, 2000, {}},
      {"/m/clips", MediaKind::Videos, 2000, {}},
  };
  for (const auto& step : steps) {
    asked.clear();
    requestScans(scans, requests, step.room, step.kind, step.at);
    EXPECT_EQ(asked, step.asked) << step.room << " at " << step.at;
  }
  requestScans(scans, {}, "/m/more", MediaKind::Movies, 2000);
}

TEST(CaptionLayout, BadgeNamesTheSmallerSide) {
  const struct {
    SDL_Point size;
    const char* badge;
  } cases[] = {
      {{3840, 2160}, "4K"}, {{3840, 1600}, "FHD"}, {{1920, 1080}, "FHD"}, {{1080, 1920}, "FHD"},
      {{1920, 800}, "HD"},  {{1280, 720}, "HD"},   {{1280, 718}, ""},     {{2, 2}, ""},
  };
  for (const auto& [size, badge] : cases)
    EXPECT_STREQ(resolutionBadge(size), badge) << size.x << 'x' << size.y;
}

TEST(CaptionLayout, WordsStandOnTheStory) {
  EXPECT_EQ(captionFonts(1080).title, 126);
  EXPECT_EQ(captionFonts(431).title, 72);
  EXPECT_EQ(captionFonts(2160).year, 96);
  EXPECT_EQ(captionMargin(719), 24);
  EXPECT_EQ(captionMargin(1920), 64);
  EXPECT_EQ(overviewWidth(1920), 1056);
  EXPECT_EQ(overviewWidth(400), 260);
  EXPECT_EQ(overviewWidth(300), 252);
  EXPECT_EQ(overviewLineLimit(1080, 57), 6);
  EXPECT_EQ(overviewLineLimit(240, 57), 2);

  CaptionSizes sizes{.window = {1920, 1080},
                     .year = {200, 110},
                     .badge = {60, 36},
                     .title = {700, 150},
                     .tag = {60, 29},
                     .lines = 3,
                     .lineHeight = 57};
  CaptionPlaces places = placeCaption(sizes);
  EXPECT_EQ(places.overview.y, 1080 - 64 - 167);
  EXPECT_EQ(places.title.y, 849 - 12 - 150);
  EXPECT_EQ(places.year.x, 1920 - 64 - 200);
  EXPECT_EQ(places.year.y, 1080 - 64 - 110 - 20);
  EXPECT_EQ(places.badge.y, 1080 - 64 - 36) << "no room under the year";
  EXPECT_EQ(places.tagBox, (SDL_Rect{64, 64, 76, 37}));
  sizes.logo = {500, 200};
  places = placeCaption(sizes);
  EXPECT_EQ(places.logo, (SDL_Rect{64, 849 - 12 - 200, 500, 200}));
  EXPECT_EQ(places.tagBox.y, 64 + 36);
  sizes.lines = 0;
  places = placeCaption(sizes);
  EXPECT_EQ(places.logo.y, 64);
  EXPECT_EQ(places.title.y, 1080 - 64 - 150);
  sizes.logo = {400, 1000};
  EXPECT_EQ(placeCaption(sizes).logo.y, 64) << "too tall to end above the edge";
}

TEST(MusicVariant, DriftsAndStacksItsLines) {
  EXPECT_EQ(driftingBackdrop({1920, 1080}, {1920, 1080}, 0), (SDL_Rect{-48, -11, 2016, 1134}));
  const auto places = placeMusicText({1920, 1080}, {SDL_Point{300, 60}, {0, 0}, {80, 40}});
  EXPECT_EQ(places[0].x, 120);
  EXPECT_EQ(places[0].y, 1080 - 120 - 108);
  EXPECT_EQ(places[2].y, 1080 - 120 - 40);
}

}  // namespace
}  // namespace tavek

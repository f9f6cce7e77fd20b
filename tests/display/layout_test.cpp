// Where discs, posters and tracks lie, and what their labels say.

#include <gtest/gtest.h>

#include "display/home/home_layout.h"
#include "display/home/rooms.h"
#include "display/music/music_layout.h"
#include "display/strip/letter_bar.h"
#include "display/strip/strip_layout.h"
#include "support/media_root.h"
#include "support/offscreen.h"
#include "support/table.h"

namespace tavek {
namespace {

std::string text(const SDL_Rect& rect) {
  return std::to_string(rect.x) + "," + std::to_string(rect.y) + " " + std::to_string(rect.w) + "x" +
         std::to_string(rect.h);
}

std::string text(const UserDisc& disc) {
  return std::to_string(disc.centre.x) + "," + std::to_string(disc.centre.y) + " " +
         std::to_string(disc.radius);
}

/// With the centre and radius of the first and the last one.
TEST(HomeLayout, DiscsAreAsLargeAsTheirRowsAllow) {
  const std::tuple<int, int, int, int, const char*, const char*> cases[] = {
      {1, 1920, 1080, 1, "960,540 360", "960,540 360"},  {2, 1920, 1080, 1, "534,540 360", "1386,540 360"},
      {5, 1920, 1080, 2, "392,324 185", "1386,756 185"}, {9, 1920, 1080, 2, "278,324 140", "1599,756 140"},
      {3, 1080, 1920, 3, "540,392 253", "540,1528 253"}, {40, 320, 240, 5, "55,56 8", "265,184 8"},
  };
  for (const auto& [users, width, height, rows, first, last] : cases) {
    const HomeLayout layout = layoutHome(users, width, height);
    EXPECT_EQ(layout.rows, rows) << users;
    EXPECT_EQ(text(layout.discs.front()), first) << users;
    EXPECT_EQ(text(layout.discs.back()), last) << users;
  }
  EXPECT_TRUE(layoutHome(0, 1920, 1080).discs.empty());
}

TEST(HomeLayout, RoomBoxHoldsTheWidestNameAndItsArrows) {
  const RoomBox large = layoutRoomBox({{534, 540}, 360, 72}, {60, 50});
  EXPECT_EQ(text(large.box), "438,677 192x86");
  EXPECT_TRUE(large.text.x == 468 && large.text.y == 695 && large.arrowHeight == 21);
  EXPECT_EQ(large.arrows.x, 438 + 192 - 42 - 30);
  const RoomBox small = layoutRoomBox({{100, 100}, 40, 8}, {20, 12});
  EXPECT_EQ(text(small.box), "79,112 42x16");
  EXPECT_TRUE(small.arrowWidth == 8 && small.arrowHeight == 4 && small.arrowGap == 2);
}

TEST(StripLayout, SelectionStandsOutInItsSlot) {
  const std::vector<int> widths{160, 0, 160, 600, 50};
  const StripLayout layout = layoutStrip(widths, 2, 1920, 756);
  std::string slots;
  for (std::size_t i = 0; i < layout.count; ++i)
    slots += std::to_string(layout.slots[i].index) + ":" + text(layout.slots[i].rect) + " ";
  EXPECT_EQ(slots, "0:5,798 160x240 2:177,768 200x300 3:384,884 171x68 4:615,798 50x240 ");
  const StripLayout wide = layoutStrip(std::vector<int>{600}, 0, 1920, 756);
  EXPECT_EQ(text(wide.slots[0].rect), "0,875 213x85") << "never beyond its slot";
}

TEST(StripLayout, ListScrollsUnderTheSelection) {
  const std::tuple<int, std::size_t, std::size_t> cases[] = {
      {-1, 0, 0}, {10, 11, 0}, {5, 12, 0}, {6, 12, 1}, {11, 12, 1}, {50, 500, 45}, {499, 500, 489}};
  for (const auto& [selected, count, scroll] : cases)
    EXPECT_EQ(stripScrollFor(selected, count), scroll) << selected << " of " << count;
}

TEST(StripLayout, StripRisesWithin120Milliseconds) {
  StripState strip{.visible = true, .sliding = true, .slidingIn = true, .slideAt = 1000};
  EXPECT_EQ(stripReveal(strip, 900), 0);
  EXPECT_EQ(stripReveal(strip, 1060), 0.5);
  EXPECT_EQ(stripReveal(strip, 5000), 1);
  EXPECT_EQ(stripTop(1080, 0.5), 918);
  strip.slidingIn = false;
  EXPECT_EQ(stripReveal(strip, 1030), 0.75);
  EXPECT_EQ(stripReveal({}, 1030), 0);
}

TEST(StripLayout, LabelsTellSeasonAndEpisode) {
  for (const auto& [depth, poster, label] : test::table<3>(R"(
      0 => /tv/Show/poster.jpg => ;; 1 => /tv/Show/Specials/poster.jpg => Season 0 ;; 1 => /tv/Show/Extras/poster.jpg =>
      1 => /tv/Show/S02/poster.jpg => Season 2 ;; 2 => /tv/Show/Season 2/S02E05 Pilot.mkv => Season 2, 05 Pilot
      2 => /tv/Show/Season 2/S02E05.mkv => Season 2, 05 ;; 2 => /tv/Show/Season 2/Pilot.mkv =>
      1 => /tv/Show/S01E03 Beside the Seasons.mkv => Season 1, 03 Beside the Seasons)"))
    EXPECT_EQ(stripLabel(std::stoi(depth), poster), label) << poster;
}

TEST(LetterBar, StartsAtTheSelectedName) {
  LetterBar bar;
  bar.openAt("(500) Days", 0);
  EXPECT_EQ(bar.typedText(), "5");
  bar.step(-9, 0);
  EXPECT_EQ(bar.typedText(), "0") << "no wrap";
  bar.type('Q', 100);
  bar.type('\b', 100);
  bar.type('\b', 100);
  EXPECT_EQ(bar.typedText(), "");
  bar.type('Q', 100);
  bar.forgetTyped(9000);
  EXPECT_EQ(bar.typedText(), "q") << "as long as the bar is open";
  bar.reset();
  bar.forgetTyped(2099);
  EXPECT_EQ(bar.typedText(), "q");
  bar.forgetTyped(2100);
  EXPECT_EQ(bar.typedText(), "");
  const std::pair<const char*, char> cells[] = {{"", 'A'},    {"(500) Days", '5'}, {"Über", 'U'},
                                                {"été", 'E'}, {"Брат", 'Z'},       {"...", 'Z'}};
  for (const auto& [title, cell] : cells) EXPECT_EQ(letterAlphabet[letterCellOf(title)], cell) << title;
}

TEST(Rooms, StoredRoomIsFound) {
  const std::vector<fs::path> rooms{"/m/Kids", "/m/Movies", "/m/Series", "/m/music"};
  const std::tuple<const char*, std::size_t, std::size_t> cases[] = {
      {"kids", 1, 0}, {"movies", 0, 1}, {"tv", 0, 2},        {"gone", 3, 3},
      {"", 2, 2},     {"", 9, 1},       {"/m/Series/", 0, 2}};
  for (const auto& [hint, current, room] : cases)
    EXPECT_EQ(roomFor(rooms, hint, current), room) << hint << current;
  EXPECT_EQ(roomFor(rooms, (test::library.path() / "KIDS/x").string(), 1), 0U);
  EXPECT_EQ(roomFor({}, "tv", 0), 0U);
  EXPECT_EQ(roomLabel("/m/Series") + roomLabel("/m/Kids") + roomLabel("/"), "tvKidslibrary");
}

TEST(MusicLayout, LinesTellWhatIsKnown) {
  const TrackInfo all{"Sun", "Ann", "Sky", "3", "1999", "Pop", "04:05"};
  const std::tuple<std::optional<TrackInfo>, TrackLines> cases[] = {
      {std::nullopt, {"07 Song", "", ""}},
      {TrackInfo{}, {"07 Song", "", ""}},
      {all, {"Sun", "Ann - Sky", "Track 3 | 04:05 | 1999"}},
      {TrackInfo{"", "", "Sky", "3", "", "", "04:05"}, {"07 Song", "Sky", "Track 3 | 04:05"}},
      {TrackInfo{"", "Ann", "", "", "1999", "", ""}, {"07 Song", "Ann", "1999"}},
  };
  for (const auto& [info, lines] : cases) EXPECT_EQ(trackLines("/media/music/07 Song.mp3", info), lines);
}

TEST(MusicLayout, ColumnHoldsTheCurrentTrackInItsMiddle) {
  const std::tuple<SDL_Point, int, int, std::size_t, std::size_t, SDL_Rect, std::size_t, std::size_t>
      cases[] = {
          {{1920, 1080}, 1080, 29, 3, 0, {1352, 925, 520, 107}, 0, 3},
          {{1920, 1080}, 756, 29, 3, 0, {1352, 601, 520, 107}, 0, 3},
          {{1920, 1080}, 1080, 96, 40, 0, {1352, 52, 520, 980}, 0, 10},
          {{1920, 1080}, 1080, 96, 40, 20, {1352, 52, 520, 980}, 15, 10},
          {{1920, 1080}, 1080, 96, 40, 39, {1352, 52, 520, 980}, 30, 10},
          {{1920, 1080}, 756, 29, 40, 0, {1352, 48, 520, 977}, 0, 33},
          {{470, 200}, 200, 18, 40, 1, {190, 20, 260, 164}, 0, 8},
          {{400, 30}, 30, 18, 5, 2, {120, 20, 260, 20}, 2, 0},
      };
  for (const auto& [window, edge, lineHeight, tracks, current, panel, first, rows] : cases) {
    const ColumnLayout column = layoutColumn(window, edge, lineHeight, tracks, current);
    EXPECT_EQ(column.panel, panel) << current;
    EXPECT_EQ(std::pair(column.first, column.rows), std::pair(first, rows)) << current;
  }
}

}  // namespace
}  // namespace tavek

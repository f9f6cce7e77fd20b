// What the music screen tells, and where.
#include <tuple>

#include <gtest/gtest.h>

#include "display/music/music_layout.h"

namespace tavek {
namespace {

TEST(MusicLayout, LinesTellWhatIsKnown) {
  const std::tuple<std::optional<TrackInfo>, TrackLines> cases[] = {
      {std::nullopt, {"07 Song", "", ""}},
      {TrackInfo{}, {"07 Song", "", ""}},
      {TrackInfo{"Sun", "Ann", "Sky", "3", "1999", "Pop", "04:05"},
       {"Sun", "Ann - Sky", "Track 3 | 04:05 | 1999"}},
      {TrackInfo{"", "", "Sky", "3", "", "", "04:05"}, {"07 Song", "Sky", "Track 3 | 04:05"}},
      {TrackInfo{"", "Ann", "", "", "1999", "", ""}, {"07 Song", "Ann", "1999"}},
  };
  for (const auto& [info, lines] : cases) EXPECT_EQ(trackLines("/media/music/07 Song.mp3", info), lines);
}

TEST(MusicLayout, ColumnHoldsTheCurrentTrackInItsMiddle) {
  const struct {
    SDL_Point window;
    int edge, lineHeight;
    std::size_t tracks, current;
    SDL_Rect panel;
    std::size_t first, rows;
  } cases[] = {
      {{1920, 1080}, 1080, 29, 3, 0, {1352, 925, 520, 107}, 0, 3},
      {{1920, 1080}, 756, 29, 3, 0, {1352, 601, 520, 107}, 0, 3},
      {{1920, 1080}, 1080, 96, 40, 0, {1352, 52, 520, 980}, 0, 10},
      {{1920, 1080}, 1080, 96, 40, 20, {1352, 52, 520, 980}, 15, 10},
      {{1920, 1080}, 1080, 96, 40, 39, {1352, 52, 520, 980}, 30, 10},
      {{1920, 1080}, 756, 29, 40, 0, {1352, 48, 520, 977}, 0, 33},
      {{470, 200}, 200, 18, 40, 1, {190, 20, 260, 164}, 0, 8},
      {{400, 30}, 30, 18, 5, 2, {120, 20, 260, 20}, 2, 0},
  };
  for (const auto& c : cases) {
    const ColumnLayout column = layoutColumn(c.window, c.edge, c.lineHeight, c.tracks, c.current);
    const auto& [x, y, w, h] = column.panel;
    EXPECT_EQ(std::tuple(x, y, w, h), std::tuple(c.panel.x, c.panel.y, c.panel.w, c.panel.h)) << &c - cases;
    EXPECT_EQ(std::pair(column.first, column.rows), std::pair(c.first, c.rows)) << &c - cases;
  }
}

}  // namespace
}  // namespace tavek

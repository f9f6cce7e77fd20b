#include "display/toolkit/shapes.h"

#include <gtest/gtest.h>

#include "display/toolkit/list.h"
#include "display/toolkit/rows.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

TEST(ShapesTest, DiscHasAFullCoreAndAThinnerRing) {
  const test::Offscreen screen(200, 200);
  // The full colour reaches as far as the core, and something is drawn up to the reach.
  using Row = std::array<int, 4>;
  for (const auto& [radius, ring, core, reach] :
       {Row{40, 0, 40, 40}, {40, 10, 30, 39}, {18, 18, 18, 35}, {1, 0, 1, 1}}) {
    screen.clear();
    drawDisc(screen.renderer(), 100, 100, radius, ring, theme::accent);
    EXPECT_EQ(screen.drawnArea(), (SDL_Rect{100 - reach, 100 - reach, 2 * reach + 1, 2 * reach + 1}))
        << radius;
    EXPECT_EQ(screen.pixel(100 + core, 100), theme::accent) << radius;
    EXPECT_NEAR(redOf(screen.pixel(100, 100 - reach)), reach > core ? 255 * 0.73 : 255, 8) << radius;
  }
  drawDisc(screen.renderer(), 100, 100, 20, 5, theme::accent, theme::white);
  EXPECT_GT(blueOf(screen.pixel(119, 105)), 60) << "the rim";
  SDL_BlendMode mode = SDL_BLENDMODE_BLEND;
  SDL_GetRenderDrawBlendMode(screen.renderer(), &mode);
  EXPECT_EQ(mode, SDL_BLENDMODE_NONE) << "restored";
}

TEST(ShapesTest, CornerMarkFillsTheTopRightCorner) {
  const test::Offscreen screen(200, 300);
  drawCornerMark(screen.renderer(), {10, 20, 160, 240}, -1.0);
  EXPECT_EQ(screen.drawnArea(), SDL_Rect{});
  drawCornerMark(screen.renderer(), {10, 20, 160, 240}, 0.5);
  EXPECT_EQ(screen.drawnArea(), (SDL_Rect{130, 20, 40, 40}));
  EXPECT_NEAR(greenOf(screen.pixel(160, 30)), 200 * 100 / 255, 2);
  EXPECT_NEAR(greenOf(screen.pixel(169, 30)), (78 * 127 + 120 * 128) / 255, 3) << "outline over fill";
  EXPECT_EQ(screen.pixel(136, 30), theme::black) << "left of the slope";
}

TEST(ShapesTest, CaretStaysInsideItsBoxAndBlinks) {
  constexpr SDL_Rect box{100, 50, 200, 40};
  EXPECT_EQ(caretRect(box, 150, 30), (SDL_Rect{150, 55, 2, 30}));
  EXPECT_EQ(caretRect(box, 20, 4), (SDL_Rect{106, 61, 2, 18}));
  EXPECT_EQ(caretRect(box, 999, 20), (SDL_Rect{292, 60, 2, 20}));
  EXPECT_EQ(caretRect({100, 50, 4, 40}, 999, 20).x, 106);
  EXPECT_TRUE(caretShows(599) && !caretShows(600) && !caretShows(1199) && caretShows(1200));
}

TEST(TabsTest, LeftOverPixelsGoToTheFirstTabs) {
  EXPECT_EQ(tabRects({10, 5, 200, 44}, 4, 6, 3)[2], (SDL_Rect{146, 5, 60, 44}));
  EXPECT_EQ(tabRects({10, 5, 201, 44}, 4, 6, 3)[1], (SDL_Rect{81, 5, 60, 44}));
  EXPECT_EQ(tabRects({0, 0, 10, 44}, 4, 6, 5)[4].w, 0);
}

TEST(RowsTest, ValueIsRightAlignedAsLongAsItFits) {
  constexpr SDL_Rect row{20, 40, 380, 54};
  EXPECT_EQ(valueLayout(row, 80, 100).box, (SDL_Rect{124, 46, 264, 42}));
  for (const auto& [width, x] : {std::pair{100, 282}, {251, 131}, {252, 130}, {900, 130}})
    EXPECT_EQ(valueLayout(row, 80, width).text.x, x);
  EXPECT_EQ(valueLayout({20, 40, 50, 8}, 80, 10).box, (SDL_Rect{124, 46, 0, 0}));
}

TEST(ListTest, WindowOfRowsFollowsTheSelection) {
  const std::vector<std::string> rows(10, "row");
  const auto layout = [&](int visibleRows, int selected, const SDL_Rect& anchor) {
    return listLayout({.rows = rows, .selected = selected, .visibleRows = visibleRows}, anchor,
                      {0, 0, 1000, 600});
  };
  constexpr SDL_Rect anchor{50, 100, 300, 54};
  EXPECT_EQ(layout(4, 1, anchor).firstRow, 0);
  EXPECT_EQ(layout(4, 5, anchor).firstRow, 3);
  EXPECT_EQ(layout(4, 77, anchor).firstRow, 6);
  EXPECT_EQ(layout(99, 7, anchor).box, (SDL_Rect{50, 154, 300, 360})) << "all ten rows";
  EXPECT_EQ(layout(4, 0, {50, 390, 300, 54}).box.y, 444) << "ends on the lower margin";
  EXPECT_EQ(layout(4, 0, {50, 391, 300, 54}).box.y, 247) << "opens upwards";
  EXPECT_EQ(layout(4, 0, {900, 100, 300, 54}).box.w, 88) << "narrowed by the right margin";
  EXPECT_EQ(layout(4, 0, {50, 100, 20, 54}).box.w, 40);
  EXPECT_EQ(layout(0, 0, anchor).rowCount, 0);
}

}  // namespace
}  // namespace tavek

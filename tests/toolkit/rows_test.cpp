#include "display/toolkit/rows.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "display/toolkit/list.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

TEST(TabsTest, LeftOverPixelsGoToTheFirstTabs) {
  EXPECT_EQ(tabRects({10, 5, 200, 44}, 4, 6, 3)[2], (SDL_Rect{146, 5, 60, 44}));
  EXPECT_EQ(tabRects({10, 5, 201, 44}, 4, 6, 3)[1], (SDL_Rect{81, 5, 60, 44}));
  EXPECT_EQ(tabRects({0, 0, 10, 44}, 4, 6, 5)[4].w, 0);
}

TEST(RowsTest, ValueIsRightAlignedAsLongAsItFits) {
  constexpr SDL_Rect row{20, 40, 380, 54};
  EXPECT_EQ(valueLayout(row, 80, 100).box, (SDL_Rect{124, 46, 264, 42}));
  EXPECT_EQ(valueLayout(row, 80, 100).text.x, 282);
  EXPECT_EQ(valueLayout(row, 80, 251).text.x, 131);
  EXPECT_EQ(valueLayout(row, 80, 252).text.x, 130);
  EXPECT_EQ(valueLayout(row, 80, 900).text.x, 130);
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

#include "display/toolkit/shapes.h"

#include <gtest/gtest.h>

#include "support/offscreen.h"

namespace tavek {
namespace {

TEST(ShapesTest, DiscHasAFullCoreAndAThinnerRing) {
  const test::Offscreen screen(200, 200);
  struct Case {
    int radius, ring;
    int core;   // the full colour reaches so far
    int reach;  // and something is drawn up to here
  };
  for (const auto& [radius, ring, core, reach] :
       {Case{40, 0, 40, 40}, Case{40, 10, 30, 39}, Case{18, 18, 18, 35}, Case{1, 0, 1, 1}}) {
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

}  // namespace
}  // namespace tavek

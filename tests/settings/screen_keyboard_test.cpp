#include "display/settings/screen_keyboard.h"

#include <string>

#include <gtest/gtest.h>

#include "support/offscreen.h"

namespace tavek {
namespace {

TEST(ScreenKeyboardTest, CursorStaysOnTheKeys) {
  struct Case {
    const char* walk;
    KeyPlace end;
    const char* label;
  };
  for (const auto& [walk, end, label] :
       {Case{"UL", {0, 0}, "Esc"}, Case{"RRRRRRRRRRRRRRRR", {0, 13}, "Backspace"},
        Case{"RRRRRRRRRRRRRRD", {1, 13}, "\\"}, Case{"RRRRRRRRRRRRRRDRD", {2, 12}, "#"},
        Case{"RRRRRRRRRRRRRRDRDDL", {3, 10}, "/"}, Case{"RRDDDDDD", {4, 0}, "Space"},
        Case{"RRRDDU", {1, 3}, "E"}}) {
    ScreenKeyboard keyboard;
    for (const char step : std::string(walk))
      keyboard.moveKeyboardCursor((step == 'D') - (step == 'U'), (step == 'R') - (step == 'L'));
    EXPECT_EQ(keyboard.cursor(), end) << walk;
    EXPECT_EQ(keyboard.currentKey().label, label) << walk;
  }
}

TEST(ScreenKeyboardTest, SlidesInTime) {
  struct Step {
    bool wanted;
    Uint64 nowMs;
    double animation;
    bool visible;
  };
  ScreenKeyboard keyboard;
  for (const auto& [wanted, nowMs, animation, visible] :
       {Step{false, 0, 0, false}, Step{true, 5000, 0, true}, Step{true, 5055, 0.25, true},
        Step{true, 5110, 0.5, true}, Step{false, 5165, 0.25, true}, Step{true, 6165, 1, true},
        Step{true, 6200, 1, true}, Step{false, 6310, 0.5, true}, Step{false, 7310, 0, false},
        Step{false, 7400, 0, false}, Step{true, 9000, 0, true}, Step{true, 9110, 0.5, true}}) {
    keyboard.showKeyboard(wanted);
    keyboard.advance(nowMs);
    EXPECT_DOUBLE_EQ(keyboard.animation(), animation) << nowMs;
    EXPECT_EQ(keyboard.visible(), visible) << nowMs;
  }
}

TEST(ScreenKeyboardTest, EveryKeyCanBeHitOnEveryScreen) {
  for (const SDL_Rect& area :
       {SDL_Rect{0, 200, 640, 160}, SDL_Rect{0, 200, 360, 440}, SDL_Rect{0, 0, 1016, 600},
        SDL_Rect{0, 0, 1040, 600}, SDL_Rect{0, 0, 3840, 2160}}) {
    const KeyboardLayout layout = layoutKeyboard(area, 1);
    EXPECT_GE(layout.panel.y, area.y);
    for (std::size_t row = 0; row < layout.keys.size(); ++row) {
      int right = layout.panel.x;
      for (std::size_t column = 0; column < layout.keys[row].size(); ++column) {
        const SDL_Rect& key = layout.keys[row][column];
        EXPECT_GT(key.x, right) << row << " " << column << " of " << area.w;
        right = key.x + key.w;
        EXPECT_GE(key.w, 10);
        EXPECT_GE(key.h, 20);
        EXPECT_EQ(hitTestKeyboard(layout, {key.x, key.y}), (KeyPlace{row, column}));
        EXPECT_NE(hitTestKeyboard(layout, {right, key.y}), (KeyPlace{row, column})) << "the edge is outside";
      }
      EXPECT_LT(right, area.w) << row;
      EXPECT_LE(layout.keys[row][0].y + layout.keys[row][0].h, area.y + area.h);
    }
    EXPECT_LT(layout.keys[2].back().x + layout.keys[2].back().w, layout.keys[1].back().x)
        << "kept below Enter";
  }
  const KeyboardLayout wide = layoutKeyboard({0, 0, 1920, 1080}, 0.5);
  EXPECT_EQ(wide.keys[0][0], (SDL_Rect{8, 930, 163, 52})) << "1800 pixels to 14.3 shares";
  EXPECT_EQ(wide.keys[4][0], (SDL_Rect{480, 1178, 960, 52}));
}

}  // namespace
}  // namespace tavek

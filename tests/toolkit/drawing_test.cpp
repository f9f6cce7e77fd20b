#include <gmock/gmock.h>

#include "display/toolkit/fonts.h"
#include "display/toolkit/list.h"
#include "display/toolkit/rows.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
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

using testing::ElementsAre;

/// Fonts without a screen.
struct TextTest : testing::Test {
  TextTest() { TTF_Init(); }
  ~TextTest() override {
    dropTextCache();
    closeFonts();
    TTF_Quit();
  }
  TTF_Font* font() const { return regularFont(20); }
  int widthOf(const std::string& text) const { return textSize(font(), text).x; }
};

TEST(TextDeathTest, WithoutFontsOrRendererNothingIsDrawn) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto run = [] {
    setenv("TAVEK_FONT_DIR", "/nonexistent", 1);
    const test::Offscreen screen(64, 64);
    drawShadowedText(screen.renderer(), screen.font(), "text", 9, 9, theme::white, theme::white);
    drawOutlinedText(screen.renderer(), screen.font(), theme::white, "text", 9, 9, theme::white);
    drawDisc(nullptr, 9, 9, 9, 3, theme::white, theme::white);
    drawCornerMark(nullptr, {0, 0, 99, 99}, 1.0);
    const bool noText =
        fitText(screen.font(), "a", 99).empty() && wrapText(screen.font(), "a", 99, 2).empty();
    std::exit(regularFont(20) == nullptr && noText && screen.drawnArea() == SDL_Rect{} ? 0 : 1);
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(0), "");
}

TEST_F(TextTest, FittedTextIsTheLongestHeadWithDots) {
  const std::string text = "A film with a rather long name, caf\xC3\xA9";
  EXPECT_EQ(fitText(font(), text, widthOf(text)), text);
  EXPECT_EQ(fitText(font(), text, widthOf("...") - 1), "");
  for (int limit = widthOf("..."); limit < widthOf(text); limit += 7) {
    const std::string fitted = fitText(font(), text, limit), head = fitted.substr(0, fitted.size() - 3);
    EXPECT_TRUE(text.starts_with(head) && fitted.ends_with("...")) << fitted;
    EXPECT_LE(widthOf(fitted), limit);
    EXPECT_GT(widthOf(text.substr(0, head.size() + 1) + "..."), limit) << fitted;
  }
}

TEST_F(TextTest, WrappedTextFillsLinesWordByWord) {
  const int limit = widthOf("one two") + 1;
  const auto wrap = [&](const std::string& text, int lines) { return wrapText(font(), text, limit, lines); };
  const std::string cut = fitText(font(), "Incomprehensibilities", limit);
  EXPECT_THAT(wrap("  one \n two\tsix  ", 9), ElementsAre("one two", "six"));
  EXPECT_THAT(wrap("one two", 1), ElementsAre("one two"));
  EXPECT_THAT(wrap("one Incomprehensibilities six", 9), ElementsAre("one", cut, "six"));
  EXPECT_THAT(wrap("Incomprehensibilities six", 1), ElementsAre(cut)) << "dots only once";
  EXPECT_THAT(wrap("a one two", 1), ElementsAre("a one..."));
  EXPECT_THAT(wrap("one two six", 1), ElementsAre(fitText(font(), "one two...", limit)));
  EXPECT_TRUE(wrap(" \n ", 3).empty() && wrap("one", 0).empty());
}

TEST(DrawTextTest, ShadowsAndOutlinesSurroundTheGlyphs) {
  const test::Offscreen screen(320, 120);
  SDL_Renderer* renderer = screen.renderer();
  constexpr Colour grey = rgba(90, 90, 90);
  drawText(renderer, screen.font(), "H", 50, 50, theme::white, withAlpha(grey, 0));
  const SDL_Rect plain = screen.drawnArea();
  const auto grown = [&](int before, int behind) {
    return SDL_Rect{plain.x - before, plain.y - before, plain.w + before + behind, plain.h + before + behind};
  };
  drawText(renderer, screen.font(), "H", 50, 50, theme::white, grey);
  EXPECT_EQ(screen.drawnArea(), grown(1, 1));
  drawShadowedText(renderer, screen.font(), "H", 50, 50, theme::white, grey);
  EXPECT_EQ(screen.drawnArea(), grown(1, 2));
  drawOutlinedText(renderer, screen.font(), grey, "H", 50, 50, theme::white);
  EXPECT_EQ(screen.drawnArea(), grown(2, 2));
}

}  // namespace
}  // namespace tavek

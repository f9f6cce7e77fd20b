#include "display/toolkit/text.h"

#include <gmock/gmock.h>

#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

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

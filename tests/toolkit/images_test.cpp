#include <gtest/gtest.h>

#include "display/toolkit/background_image.h"
#include "display/toolkit/texture.h"
#include "support/offscreen.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

TEST(Texture, IsSmoothedButAtWholeMultiples) {
  constexpr auto Nearest = SDL_ScaleModeNearest, Linear = SDL_ScaleModeLinear, Best = SDL_ScaleModeBest;
  const std::tuple<SDL_Point, SDL_Point, SDL_ScaleMode, SDL_ScaleMode> cases[] = {
      {{1920, 1080}, {1920, 1080}, Best, Nearest}, {{960, 540}, {1920, 1080}, Nearest, Nearest},
      {{960, 540}, {1920, 1080}, Best, Best},      {{1280, 720}, {1920, 1080}, Nearest, Linear},
      {{720, 576}, {1440, 1080}, Nearest, Linear}, {{3840, 2160}, {1920, 1080}, Nearest, Linear},
      {{1280, 720}, {1920, 1080}, Best, Best},     {{0, 0}, {100, 100}, Nearest, Linear}};
  for (const auto& [size, shown, hinted, mode] : cases)
    EXPECT_EQ(scaleModeFor(size, shown, hinted), mode) << size.x << " to " << shown.x;
}

TEST(FittedTo, FillsItsAreaOrLiesInItAndIsNeverEnlarged) {
  const std::tuple<SDL_Point, SDL_Point, Fit, SDL_Point> cases[] = {
      {{200, 100}, {50, 50}, Fit::Cover, {100, 50}}, {{200, 100}, {50, 50}, Fit::Inside, {50, 25}},
      {{100, 200}, {50, 50}, Fit::Cover, {50, 100}}, {{200, 100}, {300, 100}, Fit::Cover, {200, 100}},
      {{200, 100}, {0, 0}, Fit::Inside, {1, 1}},
  };
  for (const auto& [picture, area, fit, fitted] : cases) {
    SurfacePtr surface(SDL_CreateRGBSurfaceWithFormat(0, picture.x, picture.y, 24, SDL_PIXELFORMAT_RGB24));
    const SurfacePtr result = fittedTo(std::move(surface), area, fit);
    ASSERT_TRUE(result);
    EXPECT_TRUE(result->w == fitted.x && result->h == fitted.y) << picture.x << " in " << area.x;
  }
}

TEST(BackgroundImage, KeepsTheOldPictureUntilTheNewOneIsThere) {
  const test::TempFolder folder;
  const auto file = [&](const char* name, const std::string& bytes) {
    test::writeText(folder.path() / name, bytes);
    return fileStateOf(folder.path() / name);
  };
  const FileState first = file("first.png", test::png(20, 10)),
                  second = file("second.png", test::png(40, 10));
  const FileState broken = file("broken.png", "no picture");
  const SurfacePtr screen(SDL_CreateRGBSurfaceWithFormat(0, 8, 8, 32, SDL_PIXELFORMAT_RGBA32));
  const RendererPtr renderer(SDL_CreateSoftwareRenderer(screen.get()));
  BackgroundImage image;
  const auto widthAfter = [&](const FileState& wanted, bool waits) {
    image.want(wanted, {100, 100}, Fit::Inside);
    while (waits && image.pending()) {
      SDL_Delay(1);
      image.take(renderer.get());
    }
    return image.size().x;
  };
  EXPECT_EQ(widthAfter(first, true), 20);
  EXPECT_EQ(widthAfter(second, false), 20);
  EXPECT_EQ(image.source(), first.path);
  EXPECT_EQ(widthAfter(second, true), 40);
  EXPECT_EQ(image.source(), second.path);
  EXPECT_EQ(widthAfter(broken, true), 0);
  EXPECT_EQ(image.texture(), nullptr);
}

}  // namespace
}  // namespace tavek

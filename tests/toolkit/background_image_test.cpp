#include "display/toolkit/background_image.h"

#include <fstream>

#include <SDL_image.h>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace tavek {
namespace {

TEST(FittedTo, FillsItsAreaOrLiesInItAndIsNeverEnlarged) {
  const struct {
    SDL_Point picture, area;
    Fit fit;
    SDL_Point fitted;
  } cases[] = {
      {{200, 100}, {50, 50}, Fit::Cover, {100, 50}}, {{200, 100}, {50, 50}, Fit::Inside, {50, 25}},
      {{100, 200}, {50, 50}, Fit::Cover, {50, 100}}, {{200, 100}, {300, 100}, Fit::Cover, {200, 100}},
      {{200, 100}, {0, 0}, Fit::Inside, {1, 1}},
  };
  for (const auto& [picture, area, fit, fitted] : cases) {
    SurfacePtr surface(SDL_CreateRGBSurfaceWithFormat(0, picture.x, picture.y, 24, SDL_PIXELFORMAT_RGB24));
    const SurfacePtr result = fittedTo(std::move(surface), area, fit);
    ASSERT_TRUE(result);
    EXPECT_EQ(std::pair(result->w, result->h), std::pair(fitted.x, fitted.y))
        << picture.x << " in " << area.x;
  }
}

TEST(BackgroundImage, KeepsTheOldPictureUntilTheNewOneIsThere) {
  const test::TempFolder folder;
  const auto file = [&](const char* name, int width) {
    const SurfacePtr picture(SDL_CreateRGBSurfaceWithFormat(0, width, 10, 24, SDL_PIXELFORMAT_RGB24));
    const std::filesystem::path path = folder.path() / name;
    EXPECT_EQ(IMG_SavePNG(picture.get(), path.c_str()), 0);
    return fileStateOf(path);
  };
  const FileState first = file("first.png", 20), second = file("second.png", 40);
  std::ofstream(folder.path() / "broken.png") << "no picture";
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
  EXPECT_EQ(widthAfter(fileStateOf(folder.path() / "broken.png"), true), 0);
  EXPECT_EQ(image.texture(), nullptr);
}

}  // namespace
}  // namespace tavek

#include "display/toolkit/texture.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

TEST(Texture, IsSmoothedButAtWholeMultiples) {
  const struct {
    SDL_Point size, shown;
    SDL_ScaleMode hinted, mode;
  } cases[] = {
      {{1920, 1080}, {1920, 1080}, SDL_ScaleModeBest, SDL_ScaleModeNearest},
      {{960, 540}, {1920, 1080}, SDL_ScaleModeNearest, SDL_ScaleModeNearest},
      {{960, 540}, {1920, 1080}, SDL_ScaleModeBest, SDL_ScaleModeBest},
      {{1280, 720}, {1920, 1080}, SDL_ScaleModeNearest, SDL_ScaleModeLinear},
      {{720, 576}, {1440, 1080}, SDL_ScaleModeNearest, SDL_ScaleModeLinear},
      {{3840, 2160}, {1920, 1080}, SDL_ScaleModeNearest, SDL_ScaleModeLinear},
      {{1280, 720}, {1920, 1080}, SDL_ScaleModeBest, SDL_ScaleModeBest},
      {{0, 0}, {10, 10}, SDL_ScaleModeNearest, SDL_ScaleModeLinear},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(scaleModeFor(c.size, c.shown, c.hinted), c.mode) << c.size.x << " to " << c.shown.x;
  }
}

}  // namespace
}  // namespace tavek

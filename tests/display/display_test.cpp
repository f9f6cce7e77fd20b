#include "display/display.h"

#include <gtest/gtest.h>

#include "base/background_job.h"
#include "base/clock.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "display/playback/picture_place.h"
#include "state/state_store.h"
#include "support/offscreen.h"

namespace tavek {
namespace {

constexpr int width = 640, height = 360;

/// Jobs that a test has left behind read names of folders that end with the process.
struct LeftJobs : testing::Environment {
  void TearDown() override { joinLeftThreads(std::chrono::seconds(5)); }
};
const auto* const leftJobs = testing::AddGlobalTestEnvironment(std::make_unique<LeftJobs>().release());

/// A grey picture with a white upper left quarter.
class Picture {
 public:
  Picture(int w, int h) : w_(w), luma_(static_cast<std::size_t>(w * h), 81), chroma_(luma_.size() / 4, 128) {
    for (int y = 0; y < h / 2; ++y) std::fill_n(luma_.begin() + y * w, w / 2, std::uint8_t{235});
  }
  PictureView view(double aspect = 1.0) const {
    return {.planes = {luma_.data(), chroma_.data(), chroma_.data()},
            .pitches = {w_, w_ / 2, w_ / 2},
            .width = w_,
            .height = static_cast<int>(luma_.size()) / w_,
            .sampleAspect = aspect};
  }

 private:
  int w_;
  std::vector<std::uint8_t> luma_, chroma_;
};

struct DisplayTest : testing::Test {
  std::unique_ptr<Display> make(Orientation orientation = Orientation::OrientationAuto) {
    test::useOffscreenDriver();
    auto display = std::make_unique<Display>(0, 0, width, height, orientation, store.parts(), steadyClock());
    // A stamp of 0 means none, and SDL's clock starts with the display.
    SDL_Delay(2);
    return display;
  }
  static int red(const Display& display, int x, int y) {
    return test::pixelAt(display.renderer(), x, y) & 0xFF;
  }

  StateStore store{stateFile()};
};

TEST_F(DisplayTest, ShowsThePictureInItsProportions) {
  const auto display = make();
  ASSERT_TRUE(display->usable());
  display->presentFrame(Picture(320, 180).view(), -1);
  EXPECT_GT(red(*display, 300, 170), 240);
  EXPECT_NEAR(red(*display, 340, 190), 76, 4);
  display->presentFrame(Picture(160, 120).view(0), -1);
  EXPECT_EQ(red(*display, 70, 100), 0) << "black beside a 4:3 picture";
  EXPECT_GT(red(*display, 90, 100), 240) << "the new size shows at once";
  display->presentFrame(Picture(0x10, 0).view(), -1);
  EXPECT_GT(red(*display, 90, 100), 240) << "an empty picture leaves the screen alone";
}

/// Pure red and pure green in each matrix, through GL and without.
TEST_F(DisplayTest, ShowsColoursByTheirMatrix) {
  using enum PictureColours;
  const std::tuple<PictureColours, std::array<int, 3>, Colour> cases[] = {
      {Bt601, {81, 90, 240}, rgba(255, 0, 0)},     {Bt601, {145, 54, 34}, rgba(0, 255, 0)},
      {Bt601Full, {76, 85, 255}, rgba(255, 0, 0)}, {Bt709, {63, 102, 240}, rgba(255, 0, 0)},
      {Bt709, {173, 42, 26}, rgba(0, 255, 0)},
  };
  for (const char* driver : {"opengles2", "software"}) {
    SDL_setenv("SDL_RENDER_DRIVER", driver, 1);
    const auto display = make();
    SDL_RendererInfo info{};
    SDL_GetRendererInfo(display->renderer(), &info);
    EXPECT_STREQ(info.name, driver);
    for (const auto& [colours, yuv, shown] : cases) {
      std::string planes;
      for (const int sample : yuv) planes += std::string(64 * 36, static_cast<char>(sample));
      const auto* data = reinterpret_cast<const std::uint8_t*>(planes.data());
      display->presentFrame({.planes = {data, data + 64 * 36, data + 2 * 64 * 36},
                             .pitches = {64, 32, 32},
                             .width = 64,
                             .height = 36,
                             .colours = colours},
                            -1);
      const Colour seen = test::pixelAt(display->renderer(), width / 2, height / 2);
      for (const auto channel : {redOf, greenOf, blueOf})
        EXPECT_NEAR(channel(seen), channel(shown), 4) << driver << " " << static_cast<int>(colours);
    }
  }
  unsetenv("SDL_RENDER_DRIVER");
}

TEST_F(DisplayTest, TurnsThePictureOnly) {
  const auto display = make(Orientation::Orientation180);
  display->presentFrame(Picture(320, 180).view(), -1);
  EXPECT_GT(red(*display, 600, 330), 240);
  EXPECT_LT(red(*display, 30, 30), 100);
}

TEST_F(DisplayTest, FadesInAndLeavesNoBlendingBehind) {
  const auto display = make();
  const Picture picture(320, 180);
  const auto shownAfter = [&](Uint32 ms) {
    SDL_Delay(ms);
    display->presentFrame(picture.view(), -1);
    return red(*display, 100, 100);
  };
  display->startVideoFadeIn();
  EXPECT_LT(shownAfter(0), 120);
  shownAfter(520);
  EXPECT_GT(shownAfter(0), 240);
  display->startVideoFadeOut();
  EXPECT_EQ(shownAfter(520), 0);
}

/// One that nobody sees has to be named.
TEST_F(DisplayTest, WithoutAScreenEveryCallIsHarmless) {
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  for (const char* driver : {"nothing", ""}) {
    SDL_setenv("SDL_VIDEODRIVER", driver, 1);
    if (*driver == '\0') unsetenv("SDL_VIDEODRIVER");
    testing::internal::CaptureStderr();
    Display display(0, 0, width, height, Orientation::OrientationAuto, store.parts(), steadyClock());
    EXPECT_NE(testing::internal::GetCapturedStderr().find("WINDOW Exception: "), std::string::npos);
    EXPECT_FALSE(display.usable());
    display.presentFrame(Picture(320, 180).view(), 0);
    display.presentBlank();
    display.setVideoPlaying(false);
    EXPECT_EQ(display.pollInput(), NavCode::None);
  }
}

TEST(PicturePlace, LiesByOrientationAndShape) {
  using enum Orientation;
  const std::tuple<Orientation, SDL_Point, SDL_Point, SDL_Rect, int, double> cases[] = {
      {OrientationAuto, {1920, 1080}, {1280, 720}, {0, 0, 1920, 1080}, 0, 1},
      {OrientationAuto, {1920, 1080}, {720, 576}, {240, 0, 1440, 1080}, 0, 16.0 / 15},
      {OrientationAuto, {1920, 1080}, {1920, 800}, {0, 140, 1920, 800}, 0, 1},
      {OrientationAuto, {1920, 1080}, {1080, 1920}, {420, -420, 1080, 1920}, 90, 1},
      {OrientationAuto, {1080, 1920}, {1920, 1080}, {-420, 420, 1920, 1080}, 90, 1},
      {OrientationAuto, {1080, 1920}, {1080, 1920}, {0, 0, 1080, 1920}, 0, 1},
      {OrientationAuto, {1000, 2000}, {1000, 500}, {-500, 500, 2000, 1000}, 90, 1},
      {OrientationAuto, {1000, 2000}, {1200, 900}, {-166, 499, 1333, 1000}, 90, 1},
      {OrientationLandscape, {1920, 1080}, {1080, 1920}, {656, 0, 607, 1080}, 0, 1},
      {Orientation0, {1080, 1920}, {1920, 1080}, {0, 656, 1080, 607}, 0, 1},
      {OrientationPortrait, {1920, 1080}, {1920, 1080}, {419, 236, 1080, 607}, 90, 1},
      {Orientation270, {1080, 1920}, {1920, 1080}, {-420, 420, 1920, 1080}, 270, 1},
      {Orientation180, {1920, 1080}, {1920, 1080}, {0, 0, 1920, 1080}, 180, 1},
      {OrientationAuto, {0, 0}, {1920, 1080}, {0, 0, 0, 0}, 0, 1},
  };
  for (const auto& [orientation, window, frame, rect, angle, aspect] : cases) {
    const PicturePlace place = placePicture(orientation, window, frame, aspect);
    EXPECT_TRUE(place.rect == rect && place.angle == angle)
        << window.x << " " << frame.x << ": " << testing::PrintToString(place.rect) << " at " << place.angle;
  }
}

}  // namespace
}  // namespace tavek

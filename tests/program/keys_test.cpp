// Steering a playing film by keys.
#include <cstdlib>

#include "program/program_run.h"

namespace tavek {
namespace {

constexpr int rate = 24;
constexpr int longFilm = 10000;

// Rows of the screen that cross what is drawn over the picture.
constexpr int logoRow = 150;
constexpr int volumeRow = 786;
constexpr int seekBarRow = 983;

constexpr auto isWhite = [](std::uint32_t colour) { return colour == 0xffffff; };
constexpr auto isRed = [](std::uint32_t colour) { return colour >> 16 > 200 && (colour & 0xffff) == 0; };
constexpr auto isOrange = [](std::uint32_t colour) { return colour >> 16 > 220 && (colour & 0xff) < 40; };
constexpr auto isGreen = [](std::uint32_t colour) {
  return (colour >> 8 & 0xff) > 150 && colour >> 16 < 80 && (colour & 0xff) < 80;
};

class KeysTest : public ProgramTest {
 protected:
  void addLong() { add("long.mkv", {.width = 320, .height = 180, .seconds = 300, .firstNumber = longFilm}); }
  void press(const char* key) { stage.screen.press(key); }
  int second() const { return (watch.number() - longFilm) / rate; }

  /// Once it had time to come together with the sound the picture goes on neither at rest nor in a rush.
  void expectRunning(const char* after) {
    SCOPED_TRACE(after);
    rig::let(1);
    const int before = watch.number();
    rig::let(1);
    EXPECT_NEAR(watch.number() - before, rate, sanitized ? 20 : 14);
  }

  void expectStanding() {
    rig::let(0.3);
    const int before = watch.number();
    rig::let(0.5);
    EXPECT_EQ(watch.number(), before);
  }

  double soundLevel() const {
    const double now = rig::now();
    return stage.sound.recording().between(now - 0.4, now).level();
  }
};

TEST_F(KeysTest, SeekAndGoHome) {
  add("short.mkv", {.seconds = 12});
  addLong();
  start({"short.mkv", "long.mkv"});
  ASSERT_TRUE(waitForNumber(3 * rate));
  press("Right");
  EXPECT_TRUE(waitForNumber(0, rate, 1)) << "past the end is the start";
  ASSERT_TRUE(waitForNumber(rate, 3 * rate, 3));
  press("Left");
  EXPECT_TRUE(waitForNumber(0, rate / 2, 1)) << "before the start is the start";

  ASSERT_TRUE(waitForNumber(rate));
  const double homeAt = rig::now();
  press("XF86HomePage");
  press("Right");
  ASSERT_TRUE(waitForNumber(longFilm, longFilm + 3 * rate, 4)) << "the next film";
  EXPECT_GT(rig::now() - homeAt, 0.5) << "the picture fades for half a second";

  ASSERT_TRUE(waitForNumber(longFilm + 3 * rate));
  press("Right");
  EXPECT_TRUE(waitForNumber(longFilm + 12 * rate, longFilm + 15 * rate, 1));
  expectRunning("the seek key");
  press("XF86AudioForward");
  EXPECT_TRUE(waitForNumber(longFilm + 22 * rate, longFilm + 28 * rate, 1));
  expectRunning("a seek forward");
  const int before = second();
  press("XF86AudioRewind");
  EXPECT_TRUE(waitForNumber(longFilm + (before - 11) * rate, longFilm + (before - 8) * rate, 1));
  expectRunning("a seek back");

  const int held = second();
  stage.screen.hold("Right");
  rig::let(1);
  EXPECT_GT(stage.screen.count(seekBarRow, 0, 1920, isOrange), 10) << "the seek bar while the key is down";
  stage.screen.release("Right");
  EXPECT_TRUE(rig::waitUntil(1, [&] { return second() > held + 40; }))
      << "from " << held << " to " << second();
  EXPECT_LT(second(), held + 120);
  expectRunning("a held seek");
  rig::let(0.5);
  EXPECT_EQ(stage.screen.count(seekBarRow, 0, 1920, isOrange), 0) << "the bar fades out";
  stage.screen.closeWindow();
  expectEnd(1.5);
}

TEST_F(KeysTest, PauseShowsItsOverlaysAndServesVolumeAndSeek) {
  addLong();
  rig::Program logo({"convert", "-size", "400x100", "xc:red", film("clearlogo.png")}, {});
  ASSERT_TRUE(logo.waitForEnd(20));
  start({"long.mkv"});
  ASSERT_TRUE(waitForNumber(longFilm + 3 * rate + rate / 2));
  const double loud = soundLevel();
  press("XF86AudioPlay");
  expectStanding();
  EXPECT_LT(soundLevel(), -60);
  EXPECT_TRUE(isWhite(stage.screen.pixel(944, 540)) && isWhite(stage.screen.pixel(975, 540))) << "pause icon";
  EXPECT_FALSE(isWhite(stage.screen.pixel(960, 540)));
  EXPECT_GT(stage.screen.count(seekBarRow, 0, 1920, isOrange), 10);
  EXPECT_EQ(stage.screen.count(logoRow, 0, 1920, isRed), 400);

  const auto fill = [this] { return stage.screen.count(volumeRow, 0, 1920, isGreen); };
  press("Left");
  EXPECT_TRUE(rig::waitUntil(0.5, [&] { return fill() > 50; }));
  const int first = fill();
  for (int i = 0; i < 5; ++i) press("Left");
  EXPECT_TRUE(rig::waitUntil(2, [&] { return std::abs(fill() - first * 60 / 65) <= first / 50; })) << fill();

  // A snapshot can be taken of a pause while a seek is under way.
  const int before = second();
  stage.screen.hold("XF86AudioForward");
  press("Print");
  EXPECT_TRUE(rig::waitUntil(2, [&] { return std::filesystem::exists(film("snapshots")); }));
  stage.screen.release("XF86AudioForward");
  EXPECT_TRUE(waitForNumber(longFilm + (before + 8) * rate, longFilm + (before + 12) * rate, 2));
  expectStanding();
  for (const auto& entry : std::filesystem::directory_iterator(film("snapshots"))) {
    EXPECT_TRUE(rig::readText(entry.path()).starts_with("\x89PNG")) << entry.path();
  }
  EXPECT_EQ(fill(), 0) << "the volume bar goes by itself";
  press("XF86AudioPlay");
  expectRunning("a pause");
  EXPECT_NEAR(soundLevel(), loud - 6, 0.7);
  EXPECT_EQ(stage.screen.pixel(944, 540), stage.screen.pixel(960, 540)) << "no icon";
  EXPECT_EQ(stage.screen.count(logoRow, 0, 1920, isRed), 0);
  stage.screen.closeWindow();
  expectEnd(1.5);
}

}  // namespace
}  // namespace tavek

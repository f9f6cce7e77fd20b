// Steering a playing film by keys.
#include "program/program_run.h"

namespace tavek {
namespace {

constexpr int rate = 24, longFilm = 10000;

// Rows of the screen that cross what is drawn over the picture.
constexpr int logoRow = 150, volumeRow = 786, seekBarRow = 983;

constexpr auto isWhite = [](std::uint32_t colour) { return colour == 0xffffff; };
constexpr auto isRed = [](std::uint32_t colour) { return colour >> 16 > 200 && (colour & 0xffff) == 0; };
constexpr auto isOrange = [](std::uint32_t colour) { return colour >> 16 > 220 && (colour & 0xff) < 40; };
constexpr auto isGreen = [](std::uint32_t colour) {
  return (colour >> 8 & 0xff) > 150 && colour >> 16 < 80 && (colour & 0xff) < 80;
};

struct KeysTest : ProgramTest {
  void addLong() { add("long.mkv", {.width = 320, .height = 180, .seconds = 300, .firstNumber = longFilm}); }
  void press(const char* key) { stage.screen.press(key); }
  /// Waits for a second of the long film, up to another.
  bool reaches(int from, int to, double seconds) {
    return waitForNumber(longFilm + from * rate, longFilm + to * rate, seconds);
  }
  int second() const { return (watch.number() - longFilm) / rate; }
  int across(int row, const auto& accepts) const { return stage.screen.count(row, 0, 1920, accepts); }
  void expectPicturesInASecond(int pictures, int tolerance = 0) {
    rig::let(0.5);
    const int before = watch.number();
    rig::let(1);
    EXPECT_NEAR(watch.number() - before, pictures, tolerance);
  }
  void expectRunning() { expectPicturesInASecond(rate, sanitized ? 20 : 14); }

  double soundLevel() const {
    const double now = rig::now();
    return stage.sound.recording().between(now - 0.4, now).level();
  }
};

TEST_F(KeysTest, SeekAndGoHome) {
  add("short.mkv", {});
  addLong();
  start({"short.mkv", "long.mkv"});
  ASSERT_TRUE(waitForNumber(rate));
  const double homeAt = rig::now();
  for (const char* key : {"XF86HomePage", "Right"}) press(key);
  ASSERT_TRUE(reaches(0, 3, 4)) << "the next film";
  EXPECT_GT(rig::now() - homeAt, 0.5) << "the picture fades for half a second";

  ASSERT_TRUE(reaches(3, 300, 10));
  press("XF86AudioForward");
  EXPECT_TRUE(reaches(12, 15, 1));
  expectRunning();
  const int held = second();
  stage.screen.hold("Right");
  rig::let(1);
  EXPECT_GT(across(seekBarRow, isOrange), 10) << "the seek bar while the key is down";
  stage.screen.release("Right");
  EXPECT_TRUE(reaches(held + 40, held + 120, 1)) << "from " << held << " to " << second();
  expectRunning();
  expectRunning();
  EXPECT_EQ(across(seekBarRow, isOrange), 0) << "the bar fades out";
  stage.screen.closeWindow();
  expectEnd(1.5);
}

TEST_F(KeysTest, PauseShowsItsOverlaysAndServesVolumeAndSeek) {
  addLong();
  addPicture("movies/clearlogo.png", "400x100", "xc:red");
  start({"long.mkv"});
  ASSERT_TRUE(waitForNumber(longFilm + 3 * rate + rate / 2));
  const double loud = soundLevel();
  press("XF86AudioPlay");
  expectPicturesInASecond(0);
  EXPECT_LT(soundLevel(), -60);
  EXPECT_TRUE(isWhite(stage.screen.pixel(944, 540)) && isWhite(stage.screen.pixel(975, 540))) << "pause icon";
  EXPECT_FALSE(isWhite(stage.screen.pixel(960, 540)));
  EXPECT_GT(across(seekBarRow, isOrange), 10);
  EXPECT_EQ(across(logoRow, isRed), 400);

  for (int i = 0; i < 6; ++i) press("Left");
  EXPECT_TRUE(rig::waitUntil(2, [&] { return across(volumeRow, isGreen) > 50; }));

  // A snapshot can be taken of a pause while a seek is under way.
  const int before = second();
  stage.screen.hold("XF86AudioForward");
  press("Print");
  EXPECT_TRUE(rig::waitUntil(2, [&] { return std::filesystem::exists(film("snapshots")); }));
  stage.screen.release("XF86AudioForward");
  EXPECT_TRUE(reaches(before + 8, before + 12, 2));
  expectPicturesInASecond(0);
  for (const auto& entry : std::filesystem::directory_iterator(film("snapshots")))
    EXPECT_TRUE(rig::readText(entry.path()).starts_with("\x89PNG")) << entry.path();
  EXPECT_EQ(across(volumeRow, isGreen), 0) << "the volume bar goes by itself";
  press("XF86AudioPlay");
  expectRunning();
  expectRunning();
  EXPECT_NEAR(soundLevel(), loud - 6, 0.7);
  EXPECT_EQ(stage.screen.pixel(944, 540), stage.screen.pixel(960, 540)) << "no icon";
  EXPECT_EQ(across(logoRow, isRed), 0);
  stage.screen.closeWindow();
  expectEnd(1.5);
}

}  // namespace
}  // namespace tavek

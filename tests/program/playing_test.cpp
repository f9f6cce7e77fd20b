// Films on the screen and in the ear, and steering them by keys.
#include <cmath>

#include "program/program_run.h"

namespace tavek {
namespace {

using rig::Clip;
using rig::Line;
using rig::Recording;
using rig::Sight;

TEST_F(ProgramTest, SoundAndPictureAgree) {
  add("film.mkv", {.seconds = 40, .sound = rig::beeps});
  start({"film.mkv"});
  const auto expectAgreement = [&](const char* where) {
    const double since = rig::now() + 1.3;
    rig::let(5.3);
    const std::vector<double> beeps = stage.sound.recording(since).onsets();
    EXPECT_GE(beeps.size(), 3U) << where;
    for (const double beep : beeps) {
      double late = 0.5;
      for (const double flash : watch.flashes(since - 0.5)) late = std::min(late, std::abs(beep - flash));
      EXPECT_LT(late, sanitized ? 0.5 : 0.045) << where;
    }
  };
  ASSERT_TRUE(waitForNumber(48));
  expectAgreement("in the middle");
  stage.screen.press("XF86AudioPlay");
  rig::let(1);
  stage.screen.press("XF86AudioPlay");
  expectAgreement("after a pause");
  stage.screen.press("Right");
  expectAgreement("after a seek");
  stage.screen.closeWindow();
  expectEnd(3);
}

// Where a film's numbers are to be read, and so where its picture has to lie.
enum View { Full, PillarBox, LetterBox, Turned };
constexpr Line views[] = {
    rig::fullWidth, {{240, 40}, {1680, 40}}, {{0, 260}, {1920, 260}}, {{1880, 0}, {1880, 1080}}};

/// One kind of film of two seconds, and how it must look and sound; a pitch of 0 is silence.
struct Kind {
  const char* name;
  Clip clip;
  int pitch = 1000;
  View view = Full;
};

std::vector<Kind> kinds() {
  const std::string tones = "0.5*sin(1600*PI*t)|0.5*sin(1600*PI*t)";
  const std::string uneven = "setpts=if(lt(N\\,20)\\,N/20\\,1+(N-20)/30)/TB,settb=1/120";
  return {
      {"wide.mkv", {.height = 272, .rate = "24000/1001"}, 1000, LetterBox},
      {"narrow-samples.mkv", {.filters = "setsar=3/4"}, 1000, PillarBox},
      {"portrait.mkv", {.width = 360, .height = 640}, 1000, Turned},
      {"ten-bit.mkv", {.rate = "50", .video = "-c:v libx264 -preset ultrafast -pix_fmt yuv420p10le"}},
      {"stereo.mp4", {.sound = tones, .soundRate = 44100, .audio = "-c:a aac", .container = "mp4"}, 800},
      {"old.avi", {.video = "-c:v mpeg4 -q:v 3", .audio = "-c:a libmp3lame", .container = "avi"}},
      {"silent.mkv", {.sound = ""}, 0},
      // Twenty pictures in the first second, thirty in the other; and one that goes on from 16:9 to 4:3.
      {"uneven.mkv",
       {.rate = "25", .filters = uneven, .video = "-c:v libx264 -fps_mode passthrough -enc_time_base 1/120"}},
      {"resized.ts", {.audio = "-c:a mp2", .container = "ts"}},
  };
}

TEST_F(ProgramTest, KindsOfFilmsAllPlay) {
  std::vector<Kind> all = kinds();
  std::vector<std::string> names;
  std::vector<std::unique_ptr<rig::Watch>> watches;
  for (const Line& view : views) watches.push_back(std::make_unique<rig::Watch>(stage.screen, view));
  for (Kind& kind : all) {
    kind.clip.seconds = 2;
    kind.clip.firstNumber = (1 + static_cast<int>(names.size())) * 1000;
    add(kind.name, kind.clip);
    names.emplace_back(kind.name);
  }
  Clip narrower = all.back().clip;
  narrower.width = 480;
  narrower.firstNumber += 100;
  narrower.audio += " -output_ts_offset 2";
  const auto second = rig::makeClip(narrower, TAVEK_TEST_MEDIA);
  rig::writeText(film(names.back()), rig::readText(film(names.back())) + rig::readText(second));
  start(names);
  expectEnd(double(names.size()) * (sanitized ? 8 : 4));

  for (const auto& [name, clip, pitch, view] : all) {
    SCOPED_TRACE(name);
    const std::vector<Sight> sights = watches[view]->numbered(clip.firstNumber, clip.firstNumber + 100);
    ASSERT_GE(sights.size(), sanitized ? 16U : 36U);
    const double from = sights.front().at;
    // Software drawing may be too slow for the turned one, but it leaves none out.
    EXPECT_NEAR(sights.back().at - from, 2, view == Turned ? 6 : mild(1));
    EXPECT_GT(sights.back().at - from, 1.65);
    const Recording sound = stage.sound.recording().between(from + 0.6, from + 1.4);
    if (pitch == 0) {
      EXPECT_LT(sound.level(), -60);
    } else {
      EXPECT_NEAR(sound.pitch(), pitch, 2);
      EXPECT_NEAR(sound.level(), -3, mild(0.5)) << "the first sound sets the volume to full";
    }
  }
  const std::vector<Sight> quicker = watch.numbered(8020, 8050);  // the uneven one's other second
  ASSERT_FALSE(quicker.empty());
  EXPECT_NEAR(quicker.back().at - quicker.front().at, 29 / 30.0, mild(0.25));
  EXPECT_GT(watches[PillarBox]->numbered(narrower.firstNumber, narrower.firstNumber + 100).size(),
            sanitized ? 16U : 36U)
      << "after the change of size";
}

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

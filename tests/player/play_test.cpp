#include "player/play.h"

#include <gtest/gtest.h>

#include "rig/media.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/temp_folder.h"
#include "support/turned_clock.h"
#include "support/wait.h"

extern "C" {
#include <libavutil/log.h>
}

namespace tavek {
namespace {

using namespace std::chrono;

std::string clip(const std::string& words, const std::string& extension) {
  return rig::makeFile(words, extension, TAVEK_TEST_MEDIA).string();
}

std::string film(const std::string& rate, const std::string& length, const std::string& sound = "") {
  return clip("-f lavfi -i testsrc=s=16x16:r=" + rate + ":d=" + length + sound + " -c:v ffv1 -g 10 OUT",
              "mkv");
}

/// FFmpeg's complaints about the damage would hide the test's own.
const bool quiet = (av_log_set_level(AV_LOG_QUIET), true);

std::string withSound(const std::string& pictures, const std::string& sound) {
  return film("24", pictures, " -f lavfi -i sine=d=" + sound + " -c:a pcm_s16le");
}

/// What an item's sound meets.
enum class Sound { None, Unheard, Heard };
using enum Sound;

/// A card that is there, or is not.
struct Card : test::FakeSound {
  Card(Clock& clock, bool present) : FakeSound(clock) { fail({.refuses = !present}); }
};

/// An item on a clock that stands until the player sleeps. The sound's threads get some real time each time.
struct Sitting {
  explicit Sitting(const std::string& path, Sound sound = None)
      : clock(microseconds(sound == None ? 0 : 2000)),
        card(clock, sound == Heard),
        play({path, {}, SoundMode::Stereo}, {clock, stored, card.factory()}) {
    test::waitUntil(10, [&] { return play.opening() != Play::Opening::Underway; });
    if (sound == Heard && play.opening() == Play::Opening::Open && play.sound())
      test::waitUntil(10, [&] { return card.timesOpened() > 0; });
  }

  /// Goes round for so long on the clock, or to the end. What was seen adds up.
  Play::Turn run(microseconds span) {
    const auto begun = clock.now();
    Play::Turn turn = Play::Turn::Wait;
    while (turn != Play::Turn::Ended && clock.now() - begun < span) {
      const auto before = clock.now();
      turn = play.nextTurn();
      longestTurn = std::max(longestTurn, duration_cast<microseconds>(clock.now() - before));
      if (turn != Play::Turn::Picture) continue;
      ++pictures;
      play.presented();
    }
    playedSeconds += duration<double>(clock.now() - begun).count();
    return turn;
  }

  /// What a worker or the opening said.
  std::string failure() const try {
    if (play.error()) std::rethrow_exception(play.error());
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }

  StateStore store{""};  ///< nothing is kept without a file
  const Stored stored = store.parts();
  test::TurnedClock clock;
  Card card;
  Play play;
  int pictures = 0;
  double playedSeconds = 0;
  microseconds longestTurn{0};
};

TEST(Play, TakesItsTimeToTheEnd) {
  const std::string tone = "-f lavfi -i sine=d=", song = clip(tone + "3 OUT", "flac");
  const std::string recording =
      clip("-f lavfi -i testsrc=s=64x64:r=25:d=2 -c:v mpeg2video -output_ts_offset 5000 OUT", "ts");
  const std::string slow =
      clip("-f lavfi -i testsrc=s=16x16:r=24:d=1 " + tone + "1 -c:v ffv1 -c:a pcm_s16le -ar 1 OUT", "avi");
  const std::string covered =
      clip(tone + "2 -f lavfi -i color=s=16x16:d=1:r=1 -c:v png -disposition:v:0 attached_pic OUT", "mp4");
  const std::tuple<const char*, std::string, Sound, int, double> cases[] = {
      {"24 pictures a second", film("24", "2"), None, 48, 1.96},
      {"5 pictures a second", film("5", "3"), None, 15, 2.8},
      {"60 pictures a second", film("60", "2"), None, 120, 1.98},
      {"a film of one picture", film("24", "0.04"), None, 1, 0},
      {"a recording that starts at 5,000 s", recording, None, 50, 1.96},
      {"film and sound", withSound("2", "2"), Heard, 48, 2.0},
      {"film and sound without a device", withSound("2", "2"), Unheard, 48, 2.0},
      {"sound that outlasts the pictures", withSound("1", "3"), Heard, 24, 3.0},
      {"pictures that outlast the sound", withSound("3", "1"), Heard, 72, 2.96},
      {"a sound that no device plays", slow, Heard, 24, 0.96},
      {"a cover", covered, Heard, 1, 2.0},
      {"a song", song, Heard, 1, 3.0},
      {"a song without a device", song, Unheard, 1, 3.0},
  };
  for (const auto& [what, path, sound, pictures, length] : cases) {
    SCOPED_TRACE(what);
    Sitting sitting(path, sound);
    ASSERT_EQ(sitting.play.opening(), Play::Opening::Open);
    sitting.play.start(0);
    EXPECT_EQ(sitting.run(seconds(20)), Play::Turn::Ended);
    EXPECT_EQ(sitting.pictures, pictures);
    EXPECT_NEAR(sitting.playedSeconds, length, sound == None ? 0.05 : 0.3);
    EXPECT_NEAR(double(sitting.play.positionUs()), length * 1e6, 100'000);
    EXPECT_LE(sitting.longestTurn, milliseconds(50));
    EXPECT_EQ(sitting.play.heardUs(), 0);
    EXPECT_EQ(sitting.failure(), "");
  }
}

void pauses(Sitting& sitting) {
  sitting.play.pause();
  for (int i = 0; i < 40; ++i) sitting.clock.turn(milliseconds(50));
}

void givesItsDeviceAwayInAPause(Sitting& sitting) {
  sitting.play.pause();
  sitting.play.freeSoundDevice();
  for (int i = 0; i < 20; ++i) sitting.clock.turn(milliseconds(50));
  sitting.play.takeSoundDevice();
}

void losesItsDevice(Sitting& sitting) {
  sitting.card.fail({.refuses = true, .gone = true});
  sitting.run(milliseconds(900));
}

/// Three seconds, and what happens after the first; how much was heard then, -1 if the sound's thread may be
/// anywhere, and at the end; and how often the device was opened.
TEST(Play, KeepsItsPaceAndItsSound) {
  const std::string sounding = withSound("3", "3");
  const auto seeks = [](Sitting& sitting) { sitting.play.requestSeek(1'250'000); };
  const std::tuple<const char*, std::string, Sound, void (*)(Sitting&), std::int64_t, double, int> cases[] = {
      {"a pause without sound", film("24", "3"), None, pauses, 0, 0, 0},
      {"a pause without a device", sounding, Unheard, pauses, 0, 0, 0},
      {"a pause", sounding, Heard, pauses, 1'000'000, 3, 1},
      {"a pause behind the sound's end", withSound("3", "0.5"), Heard, pauses, 0, 0.5, 1},
      {"a pause of a song", clip("-f lavfi -i sine=d=3 OUT", "flac"), Heard, pauses, 1'000'000, 3, 1},
      {"a seek to a key frame", sounding, Heard, seeks, -1, 2.75, 1},
      {"the strip", sounding, Heard, givesItsDeviceAwayInAPause, 0, 3, 2},
      {"the device goes", sounding, Heard, losesItsDevice, 0, 1.5, 1},
  };
  for (const auto& [what, path, sound, happens, heardUs, heardSeconds, timesOpened] : cases) {
    Sitting sitting(path, sound);
    sitting.play.start(0);
    sitting.run(seconds(1));
    if (sitting.play.sound() != nullptr) sitting.play.sound()->adjustVolume(-1);
    happens(sitting);
    const double heard = heardUs < 0 ? -1 : double(sitting.play.heardUs());
    EXPECT_NEAR(heard, double(heardUs), heardUs > 0 ? 200'000 : 0) << what;
    if (sitting.play.paused()) sitting.play.resume();
    EXPECT_EQ(sitting.run(seconds(20)), Play::Turn::Ended) << what;
    EXPECT_NEAR(sitting.playedSeconds, 3, sound == None ? 0.06 : 0.3) << what;
    EXPECT_NEAR(double(sitting.card.heard().size()) / 44100 / 2, heardSeconds, 0.2) << what;
    EXPECT_EQ(sitting.card.timesOpened(), timesOpened) << what;
    EXPECT_EQ(sitting.failure(), "") << what;
  }
}

TEST(Play, SeeksAnywhereAndPlaysOnToTheEnd) {
  Sitting sitting(film("24", "2"));
  Play& play = sitting.play;
  play.start(1'000'000);
  for (const std::int64_t target : {1'900'000, 0, 1'999'999, 1'200'000, 1'990'000}) {
    play.requestSeek(target);
    EXPECT_EQ(play.positionUs(), target);
    EXPECT_EQ(sitting.run(milliseconds(60)), Play::Turn::Picture) << target;
    // The key frame before the target is at most ten pictures away.
    EXPECT_NEAR(double(play.positionUs()), double(target), 450'000) << target;
  }
  EXPECT_EQ(sitting.run(seconds(20)), Play::Turn::Ended);
  play.requestSeek(0);
  EXPECT_EQ(sitting.run(milliseconds(60)), Play::Turn::Picture) << "the end is as good a place as any";
  EXPECT_LT(play.positionUs(), 100'000);

  play.pause();
  EXPECT_FALSE(play.takeNewest());
  const std::uint64_t before = play.pictureSerial();
  play.requestSeek(1'250'000);
  EXPECT_TRUE(test::waitUntil(5, [&] { return play.takeNewest(); }));
  EXPECT_GT(play.pictureSerial(), before);
  EXPECT_EQ(play.positionUs(), 1'250'000);
  EXPECT_FALSE(play.takeNewest()) << "one picture is enough for a place";
}

/// Fourteen seconds in which these pictures cannot be decoded.
std::string damagedFilm(const std::filesystem::path& folder, int first, int last, int step = 1) {
  std::string bytes = test::readText(clip("-f lavfi -i testsrc=s=16x16:r=24:d=14 -c:v magicyuv OUT", "mkv"));
  // Each picture begins with the word, and so does the header's name of the codec.
  std::size_t at = 0;
  for (int n = -1; (at = bytes.find("MAGY", at)) != std::string::npos; ++n, ++at) {
    if (n >= first && n <= last && (n - first) % step == 0) bytes[at] = '?';
  }
  const std::filesystem::path file = folder / (std::to_string(first) + ".mkv");
  test::writeText(file, bytes);
  return file.string();
}

TEST(Play, GetsOverDamageOrFailsAsAnItem) {
  const test::TempFolder folder;
  const std::string odd =
      clip("-f rawvideo -pix_fmt uyyvyy411 -s 16x16 -i /dev/zero -frames:v 9 -c copy -tag:v Y411 OUT", "avi");
  const std::string invalid = "FFmpeg: Invalid data found when processing input";
  const std::tuple<const char*, std::string, bool, int, int, std::string> cases[] = {
      {"two pictures", damagedFilm(folder.path(), 20, 320, 300), true, 334, 334, ""},
      {"nine seconds", damagedFilm(folder.path(), 48, 263), true, 120, 120, ""},
      {"eleven seconds", damagedFilm(folder.path(), 47, 310), true, 0, 48, invalid},
      {"all", damagedFilm(folder.path(), 0, 335), true, 0, 0, invalid},
      {"pixels that nothing converts", odd, true, 0, 0, "Conversion: failed"},
      {"no file", "/none.mkv", false, 0, 0, "FFmpeg: No such file"},
      {"no medium", "/etc/passwd", false, 0, 0, invalid},
  };
  for (const auto& [what, path, opens, fewestPictures, mostPictures, error] : cases) {
    Sitting sitting(path);
    ASSERT_EQ(sitting.play.opening(), opens ? Play::Opening::Open : Play::Opening::Failed) << what;
    if (opens) sitting.play.start(0);
    EXPECT_TRUE(!opens || sitting.run(seconds(60)) == Play::Turn::Ended) << what;
    EXPECT_GE(sitting.pictures, fewestPictures) << what;
    EXPECT_LE(sitting.pictures, mostPictures) << what;
    EXPECT_EQ(sitting.failure().substr(0, error.size()), error) << what << ": " << sitting.failure();
    EXPECT_EQ(sitting.failure().empty(), error.empty()) << what;
  }
}

}  // namespace
}  // namespace tavek

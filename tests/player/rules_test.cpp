#include <gtest/gtest.h>

#include "player/pacer.h"
#include "player/pacing.h"
#include "player/playback_timer.h"
#include "player/seek_rules.h"
#include "support/turned_clock.h"

namespace tavek {
namespace {

TEST(Pacing, WaitsByIntervalAndAudio) {
  const Pacing first, at25{false, false, 0, 40'000}, at60{false, false, 0, 16'667};
  const struct {
    const char* what;
    Pacing before;
    std::int64_t pts, audio, wait, interval;
    bool resets = false;
  } cases[] = {
      {"first picture in the band shows at once", first, 100'000, 92'000, 0, 0, true},
      {"first picture ahead waits a quarter", first, 140'000, 100'000, 10'000, 0, true},
      {"first picture behind waits the least", first, 50'000, 100'000, 8'000, 0, true},
      {"second picture learns the interval", {false, false, 0, 0}, 40'000, 0, 40'000, 40'000},
      {"later ones smooth it", at25, 44'000, 0, 41'000, 41'000},
      {"a step back with none learned", {false, false, 40'000, 0}, 30'000, 0, 16'667, 16'667},
      {"a long gap is no interval", at25, 1'000'001, 0, 40'000, 40'000},
      {"ten a second, ahead", {false, false, 0, 100'000}, 100'000, 1, 120'000, 100'000},
      {"fast streams wait 8 ms at least", {false, false, 0, 4'000}, 4'000, 0, 8'000, 4'000},
      {"inside the band", at25, 40'000, 48'000, 40'000, 40'000},
      {"ahead by 16 ms waits 4 longer", at25, 40'000, 24'000, 44'000, 40'000},
      {"far ahead is limited to 50 ms", at25, 40'000, 1, 49'999, 40'000},
      {"far behind waits 20 less", at25, 40'000, 900'000, 20'000, 40'000},
      {"behind at 60 a second", at60, 16'667, 900'000, 8'000, 16'667},
      {"a pause keeps the interval", {true, false, 7, 40'000}, 90'000, 0, 40'000, 40'000, true},
      {"a pause and a seek", {true, true, 7, 0}, 90'000, 10'000, 36'667, 16'667, true},
  };
  for (const auto& c : cases) {
    Pacing pacing = c.before;
    const PaceStep step = pace(pacing, c.pts, c.audio);
    EXPECT_TRUE(step.waitUs == c.wait && step.resetTimer == c.resets) << c.what << ": " << step.waitUs;
    EXPECT_EQ(pacing.frameIntervalUs, c.interval) << c.what;
    EXPECT_EQ(pacing.lastPositionUs, c.pts) << c.what;
    EXPECT_FALSE(pacing.resetClock || pacing.firstFrame) << c.what;
  }
}

TEST(Pacing, LeavesOutWhatIsTooLate) {
  // It is so late; the next one waits; the last one was left out; and so is this one.
  const std::tuple<std::int64_t, bool, bool, bool> cases[] = {
      {80'000, true, false, false},   {80'001, true, false, true}, {80'001, false, false, false},
      {500'000, true, true, false},   {500'001, true, true, true}, {500'001, false, true, false},
      {10'000'000, true, true, false}};
  for (const auto& [behindUs, nextWaits, leftOutBefore, leftOut] : cases)
    EXPECT_EQ(leavesOut(behindUs, nextWaits, leftOutBefore), leftOut)
        << behindUs << nextWaits << leftOutBefore;
}

/// Pictures on a screen that holds each up to its next refresh, and a sound that goes its way.
struct Showing {
  int shown = 0;
  int mostInARow = 0;              ///< left out
  std::int64_t behindAtEndUs = 0;  ///< the sound, or the time that passed
};

Showing show(int pictures, int perSecond, int refreshes, std::int64_t soundAheadUs, bool heard) {
  test::TurnedClock clock;
  Pacer pacer(clock);
  SoundClock sound;
  const Clock::Time begun = clock.now();
  const auto elapsedUs = [&] {
    return std::chrono::duration_cast<std::chrono::microseconds>(clock.now() - begun).count();
  };
  Showing result;
  int inARow = 0;
  for (int n = 0; n < pictures; ++n) {
    const std::int64_t soundUs = 1'000'000 + soundAheadUs + elapsedUs();
    if (heard) sound.wrote(0, soundUs + 500'000, 500'000, clock.now());
    const std::int64_t ptsUs = 1'000'000 + std::int64_t{n} * 1'000'000 / perSecond;
    const auto due = pacer.due(ptsUs, sound, true);
    if (!due) {
      result.mostInARow = std::max(result.mostInARow, ++inARow);
      continue;
    }
    inARow = 0;
    clock.sleepUntil(*due);
    const Clock::Time presentBegun = clock.now();
    const std::int64_t refreshUs = 1'000'000 / refreshes;
    clock.sleepFor(std::chrono::microseconds(refreshUs - elapsedUs() % refreshUs));
    pacer.presented(presentBegun);
    ++result.shown;
    result.behindAtEndUs = 1'000'000 + soundAheadUs + elapsedUs() - ptsUs;
  }
  return result;
}

TEST(Pacer, KeepsUpWithTheSoundOnAScreenThatRefreshesSlowly) {
  // The numbers of pictures are those of ten seconds.
  const std::tuple<const char*, int, int, std::int64_t, bool, int, int, int, std::int64_t> cases[] = {
      {"24 on 60", 24, 60, 0, true, 240, 240, 0, 30'000},
      {"24 on 60 without sound", 24, 60, 0, false, 240, 240, 0, 50'000},
      {"60 on 60", 60, 60, 0, true, 600, 600, 0, 80'000},
      {"60 on 60, and the sound is 0.4 s ahead", 60, 60, 400'000, true, 575, 585, 1, 100'000},
      {"60 on 60, and the sound is 0.7 s ahead", 60, 60, 700'000, true, 555, 570, 13, 100'000},
      {"60 on 50", 60, 50, 0, true, 495, 510, 1, 100'000},
      {"60 on 50 without sound", 60, 50, 0, false, 495, 510, 1, 120'000},
      {"10 on 60", 10, 60, 0, true, 100, 100, 0, 30'000},
  };
  for (const auto& [what, perSecond, refreshes, soundAheadUs, heard, fewestShown, mostShown, mostInARow,
                    mostBehindUs] : cases) {
    const Showing result = show(10 * perSecond, perSecond, refreshes, soundAheadUs, heard);
    EXPECT_TRUE(result.shown >= fewestShown && result.shown <= mostShown) << what << ": " << result.shown;
    EXPECT_LE(result.mostInARow, mostInARow) << what;
    EXPECT_LE(result.behindAtEndUs, mostBehindUs) << what;
    EXPECT_GE(result.behindAtEndUs, -20'000) << what;
  }
}

TEST(PlaybackTimer, WorksOffFourIntervalsOfLateness) {
  using std::chrono::milliseconds;
  for (const auto& [lateMs, restarts] : {std::pair{150, false}, {170, true}, {1000, true}}) {
    PlaybackTimer timer;
    auto now = PlaybackTimer::Clock::time_point(milliseconds(5000));
    timer.reset(now);
    EXPECT_EQ(timer.expectedSleepUs(now, 40'000), 40'000);
    EXPECT_EQ(timer.advance(now, 40'000), 40'000);
    now += milliseconds(40 + 40 + lateMs);
    EXPECT_EQ(timer.advance(now, 40'000), 0) << lateMs;
    EXPECT_EQ(timer.advance(now, 40'000), restarts ? 40'000 : 0) << lateMs;
  }
}

TEST(SeekRules, StepsGrowAndWrap) {
  for (const auto& [heldMs, seconds] :
       {std::pair{0, 10}, {999, 10}, {1000, 20}, {4999, 50}, {5000, 60}, {60000, 60}})
    EXPECT_EQ(seekStepUs(heldMs), seconds * 1'000'000) << heldMs;
  const std::array<int, 3> positions[] = {{-1, 100, 0}, {100, 100, 100}, {101, 100, 0}, {101, 0, 101}};
  for (const auto& [at, length, place] : positions) EXPECT_EQ(wrapPosition(at, length), place) << at;
}

}  // namespace
}  // namespace tavek

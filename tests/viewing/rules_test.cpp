#include <gtest/gtest.h>

#include "viewing/held_volume.h"
#include "viewing/item_rules.h"

namespace tavek {
namespace {

TEST(ItemRules, StoredPositions) {
  constexpr std::int64_t s = 1'000'000;
  const std::tuple<bool, std::optional<std::int64_t>, std::int64_t, std::optional<std::int64_t>, bool>
      rows[] = {{false, {}, 100 * s, {}, false},    {false, 0, 100 * s, {}, false},
                {false, -5, 100 * s, {}, false},    {false, 60 * s, 100 * s, 60 * s, false},
                {false, 99 * s, 100 * s, {}, true}, {false, 99 * s - 1, 100 * s, 99 * s - 1, false},
                {false, 60 * s, 0, {}, true},       {true, 60 * s, 100 * s, {}, true},
                {true, {}, 100 * s, {}, false}};
  for (const auto& [avi, stored, duration, seek, drops] : rows) {
    const ResumeStep step = resumeStep(avi, stored, duration);
    EXPECT_TRUE(step.seekUs == seek && step.dropStored == drops) << stored.value_or(-1) << " of " << duration;
  }

  EXPECT_EQ(savedPositionUs(7, 9), 7);
  EXPECT_EQ(savedPositionUs(0, 9), 9);
  EXPECT_EQ(savedPositionUs(-1, -3), 0);

  EXPECT_TRUE(countsAsWatched(90 * s, 100 * s));
  EXPECT_FALSE(countsAsWatched(90 * s - 1, 100 * s));
  EXPECT_FALSE(countsAsWatched(90 * s, 0));

  EXPECT_EQ(endPositionUs(false, 91 * s, 100 * s), 91 * s);
  EXPECT_EQ(endPositionUs(false, 99 * s, 100 * s), 0);
  EXPECT_EQ(endPositionUs(false, 99 * s, 0), 99 * s);
  EXPECT_EQ(endPositionUs(true, 50 * s, 100 * s), std::nullopt);
}

TEST(ItemRules, BoundaryIsTwentyFourFrames) {
  for (const auto& [rate, us] : {std::pair{25.0, 960'000},
                                 {23.976, 1'001'001},
                                 {120.0, 250'000},
                                 {5.0, 1'500'000},
                                 {0.0, 500'000},
                                 {-1.0, 500'000}})
    EXPECT_EQ(boundaryForRate(rate), us) << rate;
}

TEST(HeldVolume, StepsAtThePressAndEach150Milliseconds) {
  using std::chrono::milliseconds;
  const Clock::Time t0{milliseconds(5000)};
  HeldVolume volume;
  EXPECT_FALSE(volume.repeat(nullptr, t0)) << "no key is held";
  volume.press(1.0, nullptr, t0);
  for (const auto& [afterMs, steps] :
       {std::pair{149, false}, {150, true}, {299, false}, {310, true}, {459, false}, {460, true}})
    EXPECT_EQ(volume.repeat(nullptr, t0 + milliseconds(afterMs)), steps) << afterMs;
  volume.release(nullptr);
  EXPECT_FALSE(volume.repeat(nullptr, t0 + milliseconds(5000)));
}

TEST(HeldVolume, FillsTheBarUpToTheCeiling) {
  const std::tuple<double, double, int> cases[] = {{-60, 0, 0}, {-30, 0, 50},  {0, 0, 100},      {6, 12, 92},
                                                   {3, 0, 100}, {-60, -60, 0}, {-59.9, -60, 100}};
  for (const auto& [volume, ceiling, percent] : cases)
    EXPECT_EQ(volumePercent(volume, ceiling), percent) << volume << " of " << ceiling;
}

}  // namespace
}  // namespace tavek

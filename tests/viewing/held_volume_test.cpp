#include "viewing/held_volume.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

TEST(HeldVolume, StepsAtThePressAndEach150Milliseconds) {
  using std::chrono::milliseconds;
  const Clock::Time t0{milliseconds(5000)};
  HeldVolume volume;
  EXPECT_FALSE(volume.repeat(nullptr, t0)) << "no key is held";
  volume.press(1.0, nullptr, t0);
  for (const auto& [afterMs, steps] : {std::pair{149, false}, std::pair{150, true}, std::pair{299, false},
                                       std::pair{310, true}, std::pair{459, false}, std::pair{460, true}}) {
    EXPECT_EQ(volume.repeat(nullptr, t0 + milliseconds(afterMs)), steps) << afterMs;
  }
  volume.release(nullptr);
  EXPECT_FALSE(volume.repeat(nullptr, t0 + milliseconds(5000)));
}

TEST(HeldVolume, FillsTheBarUpToTheCeiling) {
  const struct {
    double volume, ceiling;
    int percent;
  } cases[] = {{-60, 0, 0}, {-30, 0, 50},  {0, 0, 100},      {6, 12, 92},
               {3, 0, 100}, {-60, -60, 0}, {-59.9, -60, 100}};
  for (const auto& c : cases)
    EXPECT_EQ(volumePercent(c.volume, c.ceiling), c.percent) << c.volume << " of " << c.ceiling;
}

}  // namespace
}  // namespace tavek

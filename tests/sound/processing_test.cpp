#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include <gtest/gtest.h>

#include "sound/shelf.h"
#include "sound/volume.h"

namespace tavek {
namespace {

using Block = std::vector<std::int16_t>;
template <std::size_t columns>
using Rows = std::vector<std::array<double, columns>>;

Block played(Volume& volume, Block block) {
  applyVolume(volume, block);
  return block;
}

TEST(Volume, TheFirstBlockWithSoundSetsItAndLaterOnesDoNot) {
  Volume volume = firstVolume(std::nullopt), faint = firstVolume(NAN);
  EXPECT_EQ(played(volume, {0, 0}), (Block{0, 0}));
  EXPECT_EQ(volume.volumeDb, defaultVolumeDb);
  EXPECT_EQ(played(volume, {100, -16380}), (Block{200, -32760}));
  EXPECT_NEAR(volume.volumeDb, 6.0206, 1e-4);
  EXPECT_EQ(played(volume, {100, 10}), (Block{200, 20}));
  EXPECT_EQ(played(faint, {1000}), (Block{3981})) << "no more than 12 dB";
}

TEST(Volume, TheLimiterHoldsEachBlocksPeak) {
  for (const auto& [db, sample, heard, limiter] : Rows<4>{{0, 32760, 32760, 1},
                                                          {0, -32768, -32760, 0.999756},
                                                          {12, 32767, 32760, 0.251135},
                                                          {12, 8000, 31849, 1},
                                                          {-60, 32767, 0, 1}}) {
    Volume volume = firstVolume(db);
    EXPECT_EQ(played(volume, {static_cast<std::int16_t>(sample)}).front(), heard);
    EXPECT_NEAR(volume.limiter, limiter, 1e-6) << sample;
  }
  Volume excessive = firstVolume(0);
  excessive.volumeLinear = 1000;
  EXPECT_EQ(played(excessive, {32767, -32768, 100}), (Block{32767, -32768, 1000}))
      << "the limiter has a floor";
}

TEST(Volume, AStepStaysBetweenSilenceAndTheLastPeaksCeiling) {
  for (const auto& [startDb, peak, delta, steppedDb, ceilingDb] :
       Rows<5>{{0, 0, 1, -0.001856, -0.001856},
               {0, 32760, 1, 0, 0},
               {6, -16380, 1, 6.020600, 6.020600},
               {3, -32768, 1, -0.002121, -0.002121},
               {-60, 100, 1, -59, 12},
               {-59, 100, -1, -60, 12}}) {
    Volume volume = firstVolume(startDb);
    played(volume, {static_cast<std::int16_t>(peak)});
    EXPECT_NEAR(volumeCeilingDb(volume), ceilingDb, 1e-6);
    adjustVolume(volume, delta);
    EXPECT_NEAR(volume.volumeDb, steppedDb, 1e-6);
    EXPECT_DOUBLE_EQ(volume.gain, steppedDb > -60 ? std::pow(10, volume.volumeDb / 20) * volume.limiter : 0);
  }
}

/// How many dB a shelf adds to a tone on the right of two channels; the left is silent.
double raisedDb(Shelf shelf, double frequency) {
  Block block(96000, 0);
  for (std::size_t i = 1; i < block.size(); i += 2) {
    block[i] = static_cast<std::int16_t>(
        8000 * std::sin(std::numbers::pi * frequency / 48000 * static_cast<double>(i)));
  }
  // In two blocks: the state carries over.
  applyShelf(shelf, std::span(block).first(1000), 2);
  applyShelf(shelf, std::span(block).subspan(1000), 2);
  for (std::size_t i = 0; i < block.size(); i += 2) EXPECT_EQ(block[i], 0);
  return 20 * std::log10(*std::max_element(block.begin() + 48000, block.end()) / 8000.0);
}

TEST(Shelf, EachRaisesItsEndOfTheSpectrumAndLeavesTheOther) {
  EXPECT_NEAR(raisedDb(designBassShelf(6, 48000, 2), 50), 5.5, 0.1);
  EXPECT_NEAR(raisedDb(designBassShelf(-6, 0, 2), 120), -3, 0.02);
  EXPECT_NEAR(raisedDb(designBassShelf(6, 48000, 1), 1000), 0.1, 0.1);
  EXPECT_NEAR(raisedDb(designTrebleShelf(6, 48000, 2), 17001), 5.9, 0.1);
  EXPECT_NEAR(raisedDb(designTrebleShelf(6, 48000, 6), 5000), 3, 0.05);
  EXPECT_NEAR(raisedDb(designTrebleShelf(6, 48000, 2), 500), 0.1, 0.1);
  EXPECT_NEAR(raisedDb(designTrebleShelf(0.009, 48000, 2), 13001), 0, 0.005) << "flat";
}

}  // namespace
}  // namespace tavek

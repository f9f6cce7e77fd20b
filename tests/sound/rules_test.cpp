#include <cmath>
#include <numbers>

#include <alsa/asoundlib.h>
#include <gtest/gtest.h>

#include "sound/channel_rules.h"
#include "sound/eld.h"
#include "sound/shelf.h"
#include "sound/volume.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

TEST(ChannelRules, TheDevicesOrderIsFollowedWhereItCanBeTrusted) {
  constexpr unsigned fl = SND_CHMAP_FL, fr = SND_CHMAP_FR, fc = SND_CHMAP_FC, lfe = SND_CHMAP_LFE;
  constexpr unsigned rl = SND_CHMAP_RL, rr = SND_CHMAP_RR, sl = SND_CHMAP_SL, rc = SND_CHMAP_RC;
  using Positions = std::vector<unsigned>;
  using Slots = std::vector<std::size_t>;
  EXPECT_EQ(requestedPositions(4).back(), SND_CHMAP_UNKNOWN);
  EXPECT_EQ(requestedPositions(6), (Positions{fl, fr, fc, lfe, rl, rr}));
  EXPECT_EQ(channelMapFor(Positions{fl, fr, rl, rr, fc, lfe}, 6), (Slots{0, 1, 4, 5, 2, 3}));
  EXPECT_EQ(channelMapFor(Positions{fl, fr, rc, fc}, 4), (Slots{0, 1, 3, 2}));
  EXPECT_EQ(channelMapFor(Positions{fl, fr, lfe, fc, sl, rr}, 6), (Slots{0, 1, 3, 2, 4, 5})) << "no side";
  EXPECT_EQ(channelMapFor(Positions{fl, fr, fc, lfe, rl, rr}, 6), Slots{}) << "same order";
  EXPECT_EQ(channelMapFor(Positions{fc, fl, fr, lfe, rl, rr}, 6), Slots{}) << "fronts not first";
  EXPECT_EQ(channelMapFor(Positions{fr, fl, rl, rr}, 6), Slots{}) << "another count";
}

/// The channels that the ELD files "eld#3.0" and so on of a card tell; -1 if there is none.
int channelsOf(const std::vector<const char*>& files) {
  const test::TempFolder folder;
  for (std::size_t i = 0; i < files.size(); ++i)
    test::writeText(folder.path() / "card1" / ("eld#3." + std::to_string(i)), files[i]);
  const auto sink = readSinkChannels(folder.path(), 1, 3);
  return sink.eldFound ? sink.channels.value_or(0) : -1;
}

TEST(Eld, TheLargestDescriptorOfTheFirstPresentMonitorCounts) {
  const std::pair<std::vector<const char*>, int> cases[] = {
      {{}, -1},
      {{"  monitor_present\t\t1 \r\nsad_count 9\n\tsad0_channels\t8\t\nsad1_channels 2\n"}, 8},
      {{"sad12_channels  6 [0x8]\nsad3 of 9_channels: 4 or 5\nmonitor_present 1"}, 6},
      {{"monitor_present 0\nsad0_channels 8\n"}, 0},
      {{"monitor_present\nsad0_channels 8\n"}, 0},
      {{"monitor_present 1\nsad0_rates 8\nsad0_channels none\nxsad0_channels 8\n"}, 0},
      {{"monitor_present 1\nsad0_channels 99999999999999999999\n"}, 2147483647},
      {{"monitor_present 0\nsad0_channels 8\n", "", "monitor_present 1\nsad0_channels 6\n",
        "monitor_present 1\nsad0_channels 8\n"},
       6},
      {{"", "", "", "", "monitor_present 1\nsad0_channels 4\n"}, 0},
  };
  for (const auto& [files, channels] : cases)
    EXPECT_EQ(channelsOf(files), channels) << (files.empty() ? "no file" : files.front());
}

using Block = std::vector<std::int16_t>;

Block played(Volume& volume, Block block) {
  applyVolume(volume, block);
  return block;
}

TEST(Volume, TheFirstBlockWithSoundSetsItAndLaterOnesDoNot) {
  for (const auto& stored : {std::optional<double>(), std::optional<double>(NAN)}) {
    Volume volume = firstVolume(stored);
    EXPECT_EQ(played(volume, {0, 0}), (Block{0, 0}));
    EXPECT_EQ(played(volume, {100, -16380}), (Block{200, -32760}));
    EXPECT_EQ(played(volume, {100, 10}), (Block{200, 20}));
  }
}

/// How loud a volume plays a peak, and what a step of the key makes of it.
TEST(Volume, TheLimiterHoldsThePeakAndAStepStaysBelowItsCeiling) {
  using Row = std::tuple<std::optional<double>, std::int16_t, std::int16_t, double, double, double, double>;
  for (const auto& [db, peak, heard, limiter, delta, steppedDb, ceilingDb] :
       {Row{0, 0, 0, 1, 1, -0.001856, -0.001856},
        {{}, 1000, 3981, 1, 1, 12, 12},
        {0, 32760, 32760, 1, 1, 0, 0},
        {6, -16380, -32682, 1, 1, 6.020600, 6.020600},
        {0, -32768, -32760, 0.999756, 1, -0.002121, -0.002121},
        {12, 32767, 32760, 0.251135, -1, -0.001856, -0.001856},
        {12, 8000, 31849, 1, 1, 12, 12},
        {-60, 32767, 0, 1, 1, -59, -0.001856},
        {-59, 100, 0, 1, -1, -60, 12}}) {
    Volume volume = firstVolume(db);
    EXPECT_EQ(played(volume, {peak}).front(), heard) << peak;
    EXPECT_NEAR(volume.limiter, limiter, 1e-6) << peak;
    EXPECT_NEAR(volumeCeilingDb(volume), ceilingDb, 1e-6) << peak;
    adjustVolume(volume, delta);
    EXPECT_NEAR(volume.volumeDb, steppedDb, 1e-6) << peak;
    EXPECT_DOUBLE_EQ(volume.gain, steppedDb > -60 ? std::pow(10, volume.volumeDb / 20) * volume.limiter : 0);
  }
  Volume excessive = firstVolume(0);
  excessive.volumeLinear = 1000;
  EXPECT_EQ(played(excessive, {32767, -32768, 100}), (Block{32767, -32768, 1000}))
      << "the limiter has a floor";
}

/// How many dB a shelf adds to a tone on the right of two channels; the left is silent.
double raisedDb(Shelf shelf, double frequency) {
  Block block(96000, 0);
  for (std::size_t i = 1; i < block.size(); i += 2)
    block[i] = static_cast<std::int16_t>(
        8000 * std::sin(std::numbers::pi * frequency / 48000 * static_cast<double>(i)));
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

#include <fstream>
#include <map>
#include <sstream>

#include <alsa/asoundlib.h>
#include <gtest/gtest.h>

#include "sound/channel_rules.h"
#include "sound/eld.h"
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
  EXPECT_EQ(channelMapFor(Positions{fl, fr, lfe, fc, sl, rr}, 6), (Slots{0, 1, 3, 2, 4, 5}))
      << "no side: stays";
  EXPECT_EQ(channelMapFor(Positions{fl, fr, fc, lfe, rl, rr}, 6), Slots{}) << "same order";
  EXPECT_EQ(channelMapFor(Positions{fc, fl, fr, lfe, rl, rr}, 6), Slots{}) << "fronts not first";
  EXPECT_EQ(channelMapFor(Positions{fr, fl, rl, rr}, 6), Slots{}) << "another count";
}

TEST(Eld, TheLargestDescriptorOfAPresentMonitorCounts) {
  const std::map<std::string, int> files = {
      {"  monitor_present\t\t1 \r\nsad_count 9\n\tsad0_channels\t8\t\nsad1_channels 2\n", 8},
      {"sad12_channels  6 [0x8]\nsad3 of 9_channels: 4 or 5\nmonitor_present 1", 6},
      {"monitor_present 0\nsad0_channels 8\n", 0},
      {"monitor_present\nsad0_channels 8\n", 0},
      {"monitor_present 1\nsad0_rates 8\nsad0_channels none\nxsad0_channels 8\n", 0},
      {"monitor_present 1\nsad0_channels 99999999999999999999\n", 2147483647},
      {"", 0}};
  for (const auto& [text, channels] : files) {
    std::istringstream file(text);
    EXPECT_EQ(parseEld(file).value_or(0), channels) << text;
  }
}

TEST(Eld, TheFirstFileThatShowsAMonitorWithChannelsWins) {
  const test::TempFolder folder;
  EXPECT_FALSE(readSinkChannels(folder.path(), 1, 3).eldFound);
  std::filesystem::create_directory(folder.path() / "card1");
  const auto put = [&](const std::string& name, const char* text) {
    std::ofstream(folder.path() / "card1" / name) << text;
  };
  put("eld#3.0", "monitor_present 0\nsad0_channels 8\n");
  put("eld#3.4", "monitor_present 1\nsad0_channels 4\n");
  EXPECT_TRUE(readSinkChannels(folder.path(), 1, 3).eldFound);
  EXPECT_EQ(readSinkChannels(folder.path(), 1, 3).channels, std::nullopt);
  put("eld#3.2", "monitor_present 1\nsad0_channels 6\n");
  put("eld#3.3", "monitor_present 1\nsad0_channels 8\n");
  EXPECT_EQ(readSinkChannels(folder.path(), 1, 3).channels, 6);
}

}  // namespace
}  // namespace tavek

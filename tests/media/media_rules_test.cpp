#include <gtest/gtest.h>

#include "video/demultiplex/error.h"
#include "video/demultiplex/file_types.h"
#include "video/demultiplex/stream_choice.h"

namespace tavek {

TEST(FileTypes, AreToldByTheExtension) {
  for (const char* audio : {"a.FLAC", "a.mp3", "a.alac"}) EXPECT_TRUE(isAudioFile(audio)) << audio;
  for (const char* video : {"a.MKV", "/b/a.rmvb", "a.mp3"}) EXPECT_TRUE(isVideoFile(video)) << video;
  for (const char* none :
       {"a.jpg", "a.WebP", "a.SRT", "a.nfo", "a.mkv.zip", "mkv", ".mkv", "", "a.", "/x.mkv/a"}) {
    EXPECT_FALSE(isAudioFile(none) || isVideoFile(none)) << none;
  }
  const auto complete = completeVideoExtensions({"JPG", "Odd", ".dot"});
  EXPECT_TRUE(complete.contains(".odd") && complete.contains(".dot"));
  EXPECT_EQ(complete.size(), 25u + 2u);
  const auto listed = demuxerExtensions();
  EXPECT_TRUE(listed.contains("mka") && listed.contains("mp3") && !listed.contains(""));
}

TEST(AudioChoice, PutsChannelsBeforeLanguage) {
  const std::pair<std::vector<AudioStream>, std::optional<std::size_t>> cases[] = {
      {{}, {}},
      {{{2, "eng"}, {6, "fra"}, {6, "ENG"}}, 2},
      {{{2, "eng"}, {6, "fra"}}, 1},
      {{{2, "deu"}, {2, {}}, {2, "fra"}}, 0},
      {{{2, {}}, {2, "eng"}, {2, "en"}}, 1},
      {{{-3, {}}, {0, "e"}}, 1}};
  for (const auto& [streams, chosen] : cases) EXPECT_EQ(chooseAudioStream(streams, "en"), chosen) << &chosen;
  EXPECT_EQ(chooseAudioStream(cases[4].first, {}), 0u);
  EXPECT_EQ(chooseAudioStream(cases[3].first, ""), 0u);
}

}  // namespace tavek

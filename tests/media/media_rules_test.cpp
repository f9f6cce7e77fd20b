#include <gtest/gtest.h>

#include "media/error.h"
#include "media/stream_choice.h"

namespace tavek {

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

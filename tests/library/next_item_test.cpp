#include "library/next_item.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "support/media_root.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

TEST(NextItem, FollowsEpisodesAndTracks) {
  const fs::path root = test::library.path();
  for (const char* file :
       {"tv/Show/Season 1/S01E02.mp3", "tv/Show/Season 1/S01E03.mkv", "tv/Show/Season 2/S02E01 Back.mkv",
        "tv/Show/Season 1/S01E03.notes", "tv/Show/Season 1/Extra.mkv", "tv/Show/Season 1/S01E02-sample.mkv",
        "tv/Other/1x01.mkv", "tv/Other/1x02 Two.mkv", "tv/Other/S01E04.mkv", "tv/S01E09.mkv",
        "music/Album/2 Two.flac", "music/Album/07 Seven.flac", "music/Album/Intro.flac",
        "music/Album/cover.jpg", "music/Album/inner/3 Three.flac"}) {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << "x";
  }
  const struct {
    const char* current;
    const char* next;  ///< empty for none
  } cases[] = {
      {"tv/Show/Season 1/S01E02.mp3", "tv/Show/Season 1/S01E03.mkv"},
      {"tv/Show/Season 1/S01E03.mkv", "tv/Show/Season 2/S02E01 Back.mkv"},
      {"tv/Show/Season 1/../Season 1/S01E02.mp3", "tv/Show/Season 1/S01E03.mkv"},
      {"tv/Show/Season 1/S01E02 renamed.mp3", "tv/Show/Season 1/S01E03.mkv"},
      {"tv/Show/Season 2/S02E01 Back.mkv", ""},
      {"tv/Show/Season 1/Extra.mkv", ""},
      {"tv/Show/Season 1/S07E01.mp3", ""},
      {"tv/Other/1x01.mkv", "tv/Other/1x02 Two.mkv"},
      {"tv/Other/1x02 Two.mkv", "tv/Other/S01E04.mkv"},
      {"tv/S01E09.mkv", "tv/Show/Season 2/S02E01 Back.mkv"},
      {"music/Album/2 Two.flac", "music/Album/07 Seven.flac"},
      {"music/Album/07 Seven.flac", "music/Album/Intro.flac"},
      {"music/Album/Intro.flac", ""},
      {"music/Gone/1 One.flac", ""},
  };
  for (const auto& c : cases) {
    const auto next = nextItemAfter(root / c.current, Flag());
    EXPECT_EQ(next ? next->string() : "", *c.next != '\0' ? (root / c.next).string() : "") << c.current;
  }
}

}  // namespace
}  // namespace tavek

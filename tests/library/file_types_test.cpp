#include "library/file_types.h"

#include <gtest/gtest.h>

namespace tavek {

TEST(FileTypes, AreToldByTheExtension) {
  for (const char* audio : {"a.FLAC", "a.mp3", "a.alac"}) EXPECT_TRUE(isAudioFile(audio)) << audio;
  for (const char* video : {"a.MKV", "/b/a.rmvb", "a.mp3"}) EXPECT_TRUE(isVideoFile(video)) << video;
  for (const char* none :
       {"a.jpg", "a.WebP", "a.SRT", "a.nfo", "a.mkv.zip", "mkv", ".mkv", "", "a.", "/x.mkv/a"}) {
    EXPECT_FALSE(isAudioFile(none) || isVideoFile(none)) << none;
  }
  for (const char* film : {"a.mkv", "a theme.mkv", "trailers.mkv", "resample.mp4", "a.mp3"})
    EXPECT_TRUE(isFilm(film)) << film;
  for (const char* none :
       {"theme.mp3", "Sample.MKV", "trailer.mp4", "a-Sample.avi", "a-trailer.mov", "a.jpg"})
    EXPECT_FALSE(isFilm(none)) << none;
  const auto complete = completeVideoExtensions({"JPG", "Odd", ".dot"});
  EXPECT_TRUE(complete.contains(".odd") && complete.contains(".dot"));
  EXPECT_EQ(complete.size(), 25u + 2u);
  const auto listed = demuxerExtensions();
  EXPECT_TRUE(listed.contains("mka") && listed.contains("mp3") && !listed.contains(""));
}

}  // namespace tavek

#include "library/episode_still.h"

#include <gtest/gtest.h>

#include "base/run_tool.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using test::readText;

const Flag never;

/// The arguments of ffprobe, which tells this length, and of ffmpeg. Both lie in a folder whose name needs
/// quotes.
std::string callsFor(const char* length, const fs::path& video, const fs::path& still) {
  const test::TempFolder temp;
  const fs::path folder = temp.path() / "it's \"$HOME\"";
  fs::create_directory(folder);
  std::ofstream(folder / "ffprobe")
      << "#!/bin/sh\nprintf '%s\\0' \"$@\" >>\"${0%/*}/calls\"\n[ $1 = -y ] || echo " << length;
  fs::permissions(folder / "ffprobe", fs::perms::owner_all);
  fs::create_symlink("ffprobe", folder / "ffmpeg");
  setenv("TAVEK_TOOL_DIR", folder.c_str(), 1);
  makeEpisodeThumb(video, still, never);
  unsetenv("TAVEK_TOOL_DIR");
  std::string calls = readText(folder / "calls");
  std::replace(calls.begin(), calls.end(), '\0', '|');
  return calls;
}

TEST(EpisodeStill, HandsPathsOverIntact) {
  const std::string odd = "-it's $(touch x) `id`\n\"\\*;&\xe9 %s";
  EXPECT_EQ(callsFor("2700.5", odd + ".mkv", odd + ".jpg"),
            "-v|error|-show_entries|format=duration|-of|default=noprint_wrappers=1:nokey=1|./" + odd +
                ".mkv|-y|-loglevel|error|-ss|405.075|-i|./" + odd +
                ".mkv|-frames:v|1|-vf|"
                "scale=320:480:force_original_aspect_ratio=increase,crop=320:480|-q:v|3|./" +
                odd + ".jpg|");
  for (const char* length : {"N/A", "", "0.000000", "-3", "nan"})
    EXPECT_EQ(callsFor(length, "/x/a.mkv", "/x/a.jpg").find("-y"), std::string::npos) << length;
  EXPECT_EQ(callsFor("1", "", "/x/a.jpg") + callsFor("1", "/x/a.mkv", ""), "");
}

TEST(EpisodeStill, IsMadeOnceByTheRealTools) {
  const test::TempFolder temp;
  const fs::path video = temp.path() / "S01E01 it's.mkv";
  const fs::path still = episodeStillOf(video);
  std::ofstream(still).flush();  // an empty file is no still
  runTool({.arguments = {"ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i", "testsrc=duration=0.8", video}},
          never);
  makeEpisodeThumb(video, still, never);
  EXPECT_TRUE(readText(still).starts_with("\xff\xd8"));
  // In the frame header: 8 bits, 480 lines of 320.
  EXPECT_NE(readText(still).find(std::string("\x08\x01\xe0\x01\x40", 5)), std::string::npos);
  EXPECT_EQ(callsFor("1", video, still), "");
  EXPECT_NE(callsFor("1", video, temp.path()), "") << "a folder is no still";
}

}  // namespace
}  // namespace tavek

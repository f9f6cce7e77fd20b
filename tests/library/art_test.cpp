#include <gtest/gtest.h>

#include "base/paths.h"
#include "base/run_tool.h"
#include "library/backdrop.h"
#include "library/episode_still.h"
#include "library/fan_art.h"
#include "library/media_paths.h"
#include "library/overview.h"
#include "support/table.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

std::string namesOf(const std::vector<Slide>& slides, const fs::path& root) {
  std::string names;
  for (const Slide& slide : slides)
    names += slide.path.lexically_relative(root).string() + "=" + slide.name + " ";
  return names;
}

TEST(FanArt, IsThatOfWhatIsThere) {
  const test::TempFolder folder;
  const fs::path movies = folder.path() / "movies";
  for (const char* file :
       {"B (1982)/B.mkv", "B (1982)/fanart.jpg", "A/A.mkv", "A/A.fanart.PNG", "A/poster.jpg", "C.mkv",
        "C.FanArt.jpeg", "Gone/fanart.jpg", "Gone.fanart.jpg", "A/.fanart.jpg", "A/fanart.webp",
        "D/fanart.jpg/x", "Брат 2/Брат 2.mkv", "Брат 2/fanart.jpg"})
    test::writeText(movies / file, "x");
  EXPECT_EQ(namesOf(listSlides(movies, {}, {}), movies),
            "A/A.fanart.PNG=A C.FanArt.jpeg=C B (1982)/fanart.jpg=B (1982) Брат 2/fanart.jpg=Брат 2 ");
  const std::vector<PosterTitle> posters{
      {"c", "/x/2.jpg"}, {"b (1982)", "/x/1.jpg"}, {"none", "/x/0.jpg"}, {"c", "/x/3.jpg"}, {"", "/x/A.jpg"}};
  EXPECT_EQ(namesOf(listSlides(movies, posters, {}), movies),
            "B (1982)/fanart.jpg=B (1982) C.FanArt.jpeg=C A/A.fanart.PNG=A ");
  EXPECT_EQ(listSlides(movies, {{"none", "/x/0.jpg"}}, {}).size(), 4U) << "as without posters";
  EXPECT_TRUE(listSlides(movies / "nowhere", {}, {}).empty());
  EXPECT_EQ(videoOfSlide({movies / "A/A.fanart.PNG", "A"}, {}), movies / "A/A.mkv");
  EXPECT_EQ(videoOfSlide({movies / "Gone/fanart.jpg", "Gone"}, {}), std::nullopt);
}

TEST(FanArt, OfAShowNeedsAnyEpisode) {
  for (const char* file : {"Show/Season 1/S01E01.mkv", "Show/fanart.jpg", "Empty/fanart.jpg"})
    test::writeText(tvRoot() / file, "x");
  EXPECT_EQ(namesOf(listSlides(tvRoot(), {}, {}), tvRoot()), "Show/fanart.jpg=Show ");
  fs::remove_all(tvRoot());
}

TEST(Overview, IsReadOverItsEscapes) {
  for (const auto& [text, overview] : test::table(R"(
      {"overview": "Plain."} => Plain. ;; {"x":"overview","overview" : "a \"b\" \\ c\/d"} => a "b" \ c/d
      {"overview": " two\n\n lines\t\r "} => two lines ;; {"overview": "A\u0041\u00e9\u12\q"} => AA??
      {"overview": "not closed => not closed ;; {"overview": "   "} => ;; {"overview": null} => ;; {"title": "x"} =>
      "overview":"\ => ;; =>)"))
    EXPECT_EQ(overviewIn(text).value_or(""), overview) << text;
}

/// What lies below the room, and what is found for Artist/Album/1.mp3, "-" standing for the album's folder.
TEST(Backdrop, IsTheNearestOfTheFoldersAboveTheTrack) {
  const auto cases = test::table<3>(R"(
      none => -/cover.jpg => ;; up to the room => fanart.png => fanart.png ;; and not beyond => ../fanart.png|../music.jpg =>
      the nearer folder, in spite of its lesser name => -/fanart.jpg|Artist/backdrop.png => -/fanart.jpg
      names go first => -/background.jpg|-/backdrop.png => -/backdrop.png
      then endings => -/fanart.png|-/fanart.jpeg => -/fanart.jpeg
      the exact spelling => -/BackDrop.JPG|-/fanart.png => -/fanart.png
      then any => -/BackDrop.JPG|Artist/fanart.png => -/BackDrop.JPG
      neither folders nor other pictures => -/fanart.jpg/x|-/fanart.webp =>)");
  const auto at = [](const std::string& name) {
    return musicRoot() / (name[0] == '-' ? "Artist/Album" + name.substr(1) : name);
  };
  for (const auto& [what, files, found] : cases) {
    for (const std::string& name : test::split(files)) test::writeText(at(name), "x");
    EXPECT_EQ(findBackdrop(at("-/1.mp3")).value_or(""), found.empty() ? fs::path() : at(found)) << what;
    EXPECT_FALSE(findBackdrop(mediaRoot() / "other/1.mp3")) << what;
    fs::remove_all(musicRoot());
    fs::remove(mediaRoot() / "fanart.png");
  }
  test::writeText(at("fanart.jpg"), "");
  EXPECT_FALSE(findBackdrop(at("1.mp3"))) << "an empty file is no picture";
  fs::remove_all(musicRoot());
}

const Flag never;

/// The arguments of ffprobe, which tells this length, and of ffmpeg, in a folder whose name needs quotes.
std::string callsFor(const char* length, const fs::path& video, const fs::path& still) {
  const test::TempFolder temp;
  const fs::path folder = temp.path() / "it's \"$HOME\"";
  const std::string script = "#!/bin/sh\nprintf '%s|' \"$@\" >>\"${0%/*}/calls\"\n[ $1 = -y ] || echo ";
  test::writeText(folder / "ffprobe", script + length);
  fs::permissions(folder / "ffprobe", fs::perms::owner_all);
  fs::create_symlink("ffprobe", folder / "ffmpeg");
  setenv("TAVEK_TOOL_DIR", folder.c_str(), 1);
  makeEpisodeThumb(video, still, never);
  unsetenv("TAVEK_TOOL_DIR");
  return test::readText(folder / "calls");
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
  const fs::path video = temp.path() / "S01E01 it's.mkv", still = episodeStillOf(video);
  test::writeText(still, "");  // an empty file is no still
  runTool({.arguments = {"ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i", "testsrc=duration=0.8", video}},
          never);
  makeEpisodeThumb(video, still, never);
  EXPECT_TRUE(test::readText(still).starts_with("\xff\xd8"));
  // In the frame header: 8 bits, 480 lines of 320.
  EXPECT_NE(test::readText(still).find(std::string("\x08\x01\xe0\x01\x40", 5)), std::string::npos);
  EXPECT_EQ(callsFor("1", video, still), "");
  EXPECT_NE(callsFor("1", video, temp.path()), "") << "a folder is no still";
}

}  // namespace
}  // namespace tavek

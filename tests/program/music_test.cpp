// Songs and themes: how keys, and the end of one, lead to another.
#include "program/program_run.h"

namespace tavek {
namespace {

struct Music : ProgramTest {
  void addTone(const std::string& path, int pitch, double seconds, const std::string& words = "") {
    rig::addTone(at(path), pitch, seconds, TAVEK_TEST_MEDIA, words);
  }
  void addShow(const std::string& name, int theme) {
    addTo("tv/" + name + "/Season 1/S01E01 One.mkv",
          {.width = 320, .height = 180, .seconds = 40, .firstNumber = theme, .sound = "0.5*sin(8000*PI*t)"});
    addTone("tv/" + name + "/theme.mp3", theme, 20);
    addPicture("tv/" + name + "/poster.jpg", "200x300", "gradient:");
  }
  bool waitForPitch(int pitch, double seconds) const { return stage.sound.waitForPitch(pitch, seconds); }
};

TEST_F(Music, KeysAndTheEndOfASongLeadThroughTheAlbum) {
  // In the order of the tags, which is not that of the names.
  const std::tuple<const char*, int, double> songs[] = {
      {"c", 500, 20}, {"a", 1000, 20}, {"d", 2000, 20}, {"b", 3000, 4}, {"e", 4000, 3}};
  for (int track = 1; const auto& [name, pitch, seconds] : songs)
    addTone("music/Band/Album/" + std::string(name) + ".flac", pitch, seconds,
            "-metadata track=" + std::to_string(track++));
  start({at("music/Band/Album/c.flac").string()});
  ASSERT_TRUE(waitForPitch(500, 10) && stage.screen.focusWindow(5));
  const std::tuple<const char*, int, int> steps[] = {
      {"Up", 1, 500}, {"Down", 1, 1000}, {"Up", 1, 500}, {"Down", 2, 2000}, {"Down", 1, 3000}};
  for (const auto& [key, times, pitch] : steps) {
    SCOPED_TRACE(std::string(key) + " to " + std::to_string(pitch));
    rig::let(0.3);
    for (int i = 1; i < times; ++i) {
      stage.screen.press(key);
      rig::let(0.06);
    }
    const double pressedAt = rig::now();
    stage.screen.press(key);
    ASSERT_TRUE(waitForPitch(pitch, 5));
    rig::let(0.2);
    EXPECT_LE(stage.sound.delayOf(pitch, pressedAt), mild(0.25));
  }
  EXPECT_TRUE(waitForPitch(4000, 8)) << "the fifth follows by itself";
  expectEnd(10, false);
}

TEST_F(Music, ThemesFollowTheStripAndGiveWayToTheEpisode) {
  addShow("A", 1000);
  addShow("B", 2000);
  start({});
  rig::let(sanitized ? 5 : 2);
  ASSERT_TRUE(stage.screen.focusWindow(10));
  stage.screen.press("Return");
  ASSERT_TRUE(waitForNumber(1000, 1900) && waitForPitch(4000, 5)) << "the first episode";
  for (const auto& [key, pitch] :
       {std::pair("Return", 1000), {"Right", 2000}, {"Left", 1000}, {"Escape", 4000}}) {
    SCOPED_TRACE(std::string(key) + " to " + std::to_string(pitch));
    const double cut = pitch == 4000 ? 0.24 : 0.12;  // the strip slides out first
    const double pressedAt = rig::now();
    stage.screen.press(key);
    ASSERT_TRUE(waitForPitch(pitch, 5));
    EXPECT_LE(stage.sound.delayOf(pitch, pressedAt), mild(0.4));
    // Where all takes long, the next sound may come before a silence is heard.
    EXPECT_TRUE(sanitized || stage.sound.delayOfSilence(pressedAt) <= cut) << "what sounded before";
    rig::let(1);
  }
  program->signal(SIGTERM);
  expectEnd(5);
}

}  // namespace
}  // namespace tavek

// From the home screen to a film and back, over a library made for the test.
#include "program/program_run.h"

namespace tavek {
namespace {

/// Each film of the library shows numbers of its own.
enum Film { Alpha = 1000, Beta = 3000, Kid = 5000, First = 7000, Second = 9000 };

struct HomeTest : ProgramTest {
  void addFilm(const std::string& path, Film film) {
    addTo(path, {.width = 320, .height = 180, .seconds = 40, .firstNumber = film});
    addPicture(path.substr(0, path.rfind('/')) + "/poster.jpg", "200x300", "gradient:");
  }
  void addLibrary() {
    addFilm("movies/Alpha (1990)/Alpha (1990).mkv", Alpha);
    addFilm("movies/Beta/Beta.mkv", Beta);
    addFilm("kids/Kid/Kid.mkv", Kid);
    addFilm("tv/Show/Season 1/S01E01 First.mkv", First);
    addFilm("tv/Show/Season 1/S01E02 Second.mkv", Second);
  }
  void open() {
    start({"--focus-mode"});
    ASSERT_TRUE(waitForFocus("UsersTab"));
    ASSERT_TRUE(stage.screen.focusWindow(5));
  }
  void press(const char* keys) {
    std::istringstream names(keys);
    for (std::string key; names >> key;) {
      stage.screen.press(key);
      // The strip takes 120 ms for its way out and as much for the way in again.
      rig::let(sanitized ? 2.5 : 0.5);
    }
  }
  std::string focus() const {
    const std::string out = program->output();
    const std::size_t from = out.rfind("[FOCUS] ");
    return from == std::string::npos ? "" : out.substr(from + 8, out.find('\n', from) - from - 8);
  }
  bool waitForFocus(const std::string& name) {
    return rig::waitUntil(10, [&] { return focus() == name; });
  }
  void goHome() {
    press("XF86HomePage");
    ASSERT_TRUE(waitForFocus("UsersTab"));
    rig::let(1);
  }
  bool plays(Film film) { return waitForNumber(film, film + 1000) && waitForFocus("Movie"); }
  bool keeps(const std::string& words) const {
    return rig::readText(at("persist.json")).find(words) != std::string::npos;
  }
  bool says(const std::string& line, double seconds = 0) const {
    return rig::waitUntil(seconds, [&] { return program->errors().find(line) != std::string::npos; });
  }
};

TEST_F(HomeTest, LeadsToEveryFilmAndBack) {
  addLibrary();
  open();
  EXPECT_TRUE(rig::waitUntil(2, [&] { return stage.screen.pixel(534, 350) == 0xff8000U; }))
      << "the first user's disc";
  press("Return");
  ASSERT_TRUE(plays(Alpha)) << "the first room's first film";
  ASSERT_TRUE(waitForNumber(Alpha + 72));
  press("Return");
  EXPECT_EQ(focus(), "Poster");
  const int stopped = watch.number();
  press("Right");
  EXPECT_EQ(stage.screen.pixel(179, 910), 0xffffffU) << "the frame round the second poster";
  EXPECT_EQ(watch.number(), stopped);
  press("Return");
  ASSERT_TRUE(plays(Beta));
  press("Return Up BackSpace a");
  EXPECT_EQ(focus(), "Poster");
  press("Return");
  ASSERT_TRUE(waitForNumber(stopped - 24, Alpha + 500)) << "goes on where it stopped";
  goHome();
  EXPECT_TRUE(keeps("Alpha (1990).mkv\",\n\t\t\t\t\"seek\""));
  press("Down Return");
  ASSERT_TRUE(plays(First)) << "the next room is that of the series";
  press("Return");
  EXPECT_EQ(focus(), "Tv");
  press("Return Return");
  const fs::path season = at("tv/Show/Season 1");
  ASSERT_TRUE(rig::waitUntil(10, [&] { return fs::exists(season / "S01E02 Second-thumb.jpg"); }));
  rig::let(1);
  press("Right Return");
  ASSERT_TRUE(plays(Second)) << "down to the second episode";
  ASSERT_TRUE(waitForNumber(Second + 30)) << "the keys that start an item do not pause it";
  press("Return XF86AudioPlay");
  EXPECT_EQ(focus(), "Tv") << "the key switched the mark, not the pause";
  EXPECT_TRUE(keeps("\"watched\": [\n\t\t\t\t\t\"" + (season / "S01E02 Second.mkv").string()));
  press("XF86Back XF86Back XF86Back");
  EXPECT_TRUE(plays(Second)) << "up the levels and out";

  goHome();
  press("Right Up Up Return");
  ASSERT_TRUE(plays(Kid)) << "another user in another room";
  EXPECT_TRUE(keeps("\"user\": \"Maria\"") && keeps("\"mode\": \"kids\""));
  stage.screen.closeWindow();
  expectEnd(sanitized ? 6 : 2, false);
}

TEST_F(HomeTest, WhatIsBrokenOrGoneIsNamedAndAnotherPlays) {
  addLibrary();
  const fs::path beta = at("movies/Beta"), kid = at("kids/Kid");
  open();
  press("Return");
  ASSERT_TRUE(plays(Alpha));
  rig::writeText(beta / "Beta.mkv", "no film");
  press("Return Right Return");
  EXPECT_EQ(focus(), "Poster") << "the strip stays for another choice";
  EXPECT_FALSE(says("Failed to open"));
  EXPECT_GT(stage.screen.count(730, 0, 1920, [](std::uint32_t colour) { return colour == 0x111111; }), 300)
      << "the words";
  fs::remove(beta / "Beta.mkv");
  press("Return Left Return");
  ASSERT_TRUE(plays(Alpha));
  press("Return Right Return");
  EXPECT_TRUE(says("[PLAY] selected media missing: " + (beta / "Beta.mkv").string()));
  fs::remove_all(beta);
  press("Return");
  EXPECT_TRUE(says("[PLAY] poster folder missing: " + beta.string()));
  press("Escape");
  EXPECT_TRUE(plays(Alpha));

  rig::writeText(kid / "Kid.mkv", "no film");
  goHome();
  press("Up Return");
  EXPECT_TRUE(says("Failed to open " + (kid / "Kid.mkv").string(), 5));
  ASSERT_TRUE(waitForFocus("UsersTab")) << "the home screen answers again";
  fs::remove_all(kid);
  press("Return");
  EXPECT_TRUE(says("No persisted video for user \"Alex\" under ", 5));
  rig::let(1);
  fs::remove_all(at("movies/Alpha (1990)"));
  addFilm("movies/Later/Later.mkv", Second);
  press("Down Return");
  EXPECT_TRUE(plays(Second));
  EXPECT_TRUE(says("[Resume] Failed to open persisted file for user \"Alex\""));
}

}  // namespace
}  // namespace tavek

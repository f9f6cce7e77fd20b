// The settings over a film and over the home screen, by the keys of a remote.
#include "program/program_run.h"
#include "rig/web_server.h"

namespace tavek {
namespace {

class SettingsTest : public ProgramTest {
 protected:
  void press(std::initializer_list<const char*> keys) {
    for (const char* key : keys) {
      stage.screen.press(key);
      rig::let(sanitized ? 0.6 : 0.12);
    }
  }
  std::string state() const { return rig::readText(stage.library.path() / "persist.json"); }
};

TEST_F(SettingsTest, AnotherSoundModeGoesOnWhereTheFilmWas) {
  int first = 0;
  for (const char* container : {"mkv", "avi"}) {
    SCOPED_TRACE(container);
    const std::string name = std::string("film.") + container;
    first += 2000;
    add(name, {.seconds = 40, .firstNumber = first, .audio = "-ac 2 -c:a pcm_s16le", .container = container});
    std::filesystem::remove(stage.library.path() / "persist.json");
    start({name});
    ASSERT_TRUE(waitForNumber(first + 72, first + 960));
    press({"Menu", "Return"});
    rig::let(mild(0.02));
    const int before = watch.number();
    const double flippedAt = rig::now();
    stage.screen.press("Return");
    ASSERT_TRUE(rig::waitUntil(10, [&] { return !watch.sights(flippedAt).empty(); }));
    EXPECT_NEAR(watch.sights(flippedAt).front().number, before, 24);
    rig::let(1);
    EXPECT_LE(stage.sound.delayOf(1000, flippedAt), mild(0.6));
    EXPECT_TRUE(
        rig::waitUntil(3, [&] { return state().find("\"sound\": \"stereo\"") != std::string::npos; }));
    program->signal(SIGTERM);
    expectEnd(sanitized ? 6 : 2);
  }
}

/// A user is added key by key, and chosen; the lights follow the film.
TEST_F(SettingsTest, ARemoteAddsAUserAndTheLightsFollowTheFilm) {
  rig::WebServer bridge;
  bridge.otherwise([](const rig::WebRequest&) { return rig::WebReply{.body = "[]"}; });
  rig::writeText(stage.home.path() / ".hue.json",
                 R"({"Hue": {"Bridge": ")" + bridge.base().substr(7) +
                     R"(", "User": "SECRET", "Play": {"Scene": "dim"}, "Pause": {"Scene": "bright"}}})");
  add("film.mkv", {.seconds = 60, .firstNumber = 1000});
  start({});
  ASSERT_TRUE(stage.screen.focusWindow(10));
  rig::let(1);
  press({"Menu", "Left", "Return", "Right", "Down", "Right", "Return"});
  for (int i = 0; i < 13; ++i) press({"Right"});
  press({"Return", "XF86Back", "Menu"});
  ASSERT_TRUE(rig::waitUntil(3, [&] { return state().find("\"Q\": {") != std::string::npos; }));
  stage.screen.press("Return");
  ASSERT_TRUE(waitForNumber(1040));
  const double pausedAt = rig::now();
  stage.screen.press("XF86AudioPlay");
  rig::let(1);
  press({"XF86AudioPlay"});
  EXPECT_TRUE(rig::waitUntil(3, [&] { return bridge.requests().size() >= 3; }));
  std::string told;
  for (const rig::WebRequest& request : bridge.requests()) told += request.body;
  EXPECT_EQ(told, "{\"scene\":\"dim\"}{\"scene\":\"bright\"}{\"scene\":\"dim\"}");
  EXPECT_LE(bridge.requests()[1].at - pausedAt, mild(0.1));
  program->signal(SIGTERM);
  expectEnd(sanitized ? 6 : 2);
}

}  // namespace
}  // namespace tavek

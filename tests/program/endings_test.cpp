// How a run ends, by signals and past what is broken or gone; and what stays of a film for the next one.
#include <signal.h>

#include "program/program_run.h"

namespace tavek {
namespace {

using Endings = ProgramTest;

const rig::Environment noScreen = {{"DISPLAY", ""}, {"SDL_VIDEODRIVER", "x11"}};

TEST_F(Endings, SignalsEndTheProgramInEveryState) {
  add("film.mkv", {.seconds = 30});
  const std::tuple<const char*, int, std::vector<std::string>> states[] = {
      {"playing", SIGINT, {}},
      {"paused", SIGTERM, {"XF86AudioPlay"}},
      {"seeking", SIGTERM, {"Right"}},
      {"seeking in a pause", SIGHUP, {"XF86AudioPlay", "XF86AudioForward"}},
      {"going home", SIGQUIT, {"XF86HomePage"}},
  };
  for (const auto& [name, signal, keysDown] : states) {
    SCOPED_TRACE(name);
    start({"film.mkv"});
    // A pause is possible after the first second.
    const auto begun = [&] { return watch.sights(program->startedAt()).size() > 30; };
    ASSERT_TRUE(rig::waitUntil(10, begun) && stage.screen.focusWindow(5));
    for (const std::string& key : keysDown) stage.screen.hold(key);
    rig::let(0.3);
    program->signal(signal);
    expectEnd(sanitized ? 3 : 1);
    for (const std::string& key : keysDown) stage.screen.release(key);
  }
}

TEST_F(Endings, SignalsEndTheProgramAtItsStartAndWithNoScreen) {
  add("film.mkv", {.seconds = 30});
  for (const double delay : {0.0, 0.02, 0.05, 0.1, 0.2, 0.4}) {
    SCOPED_TRACE(delay);
    start({"film.mkv"}, delay == 0.4 ? noScreen : rig::Environment{});
    // Until the first step of main a signal ends any program at once.
    rig::let(delay);
    program->signal(SIGTERM);
    ASSERT_TRUE(program->waitForEnd(sanitized ? 3 : 1));
    EXPECT_TRUE(program->status() == 0 || (delay <= 0.1 && program->status() == -SIGTERM))
        << program->status();
  }
}

TEST_F(Endings, BrokenFilesAreNamedAndTheOthersPlay) {
  add("1/good.mkv", {.seconds = 1.5, .firstNumber = 1000});
  add("2/cut.mkv", {.seconds = 4, .firstNumber = 2000});
  add("3/last.mkv", {.seconds = 1.5, .firstNumber = 3000});
  rig::writeText(film("noise.mkv"), "no film");
  fs::resize_file(film("2/cut.mkv"), fs::file_size(film("2/cut.mkv")) / 2 + 1);
  start({"1/good.mkv", "noise.mkv", "gone.mkv", "2/cut.mkv", "3/last.mkv"});
  expectEnd(20, false);
  const auto told = [this](const char* name) {
    return program->errors().find("Failed to open " + film(name).string() + ": FFmpeg: ");
  };
  EXPECT_LT(told("noise.mkv"), told("gone.mkv")) << program->errors();
  EXPECT_NE(told("gone.mkv"), std::string::npos);
  for (const auto& [from, pictures] : {std::pair{1000, 36U}, {2000, 40U}, {3000, 36U}})
    EXPECT_GE(watch.numbered(from, from + 1000).size(), sanitized ? pictures / 2 : pictures - 3) << from;
}

TEST_F(Endings, FilmGoesOnWithoutItsFileWhileTheSoundServerStandsStill) {
  add("film.mkv", {.seconds = 30});
  start({"film.mkv"});
  ASSERT_TRUE(waitForNumber(48));
  fs::remove(film("film.mkv"));
  stage.sound.stop();
  const int stopped = watch.number();
  ASSERT_TRUE(waitForNumber(stopped + 72, 1 << 16, sanitized ? 10 : 4)) << "the picture goes on";
  stage.sound.goOn();
  const double back = rig::now();
  EXPECT_TRUE(rig::waitUntil(sanitized ? 15 : 6, [&] {
    return stage.sound.recording(back + 0.7).level() > -20;
  })) << "sound comes back";
  stage.sound.stop();
  rig::let(0.3);
  program->signal(SIGTERM);
  expectEnd(sanitized ? 3 : 1);
  stage.sound.goOn();
}

TEST_F(Endings, WithNoScreenNamedFilmsAreHeardAndNothingElseRuns) {
  add("film.mkv", {.seconds = 3});
  start({"film.mkv"}, noScreen);
  expectEnd(10, false);
  const rig::Recording sound = stage.sound.recording(program->startedAt() - 0.3);
  ASSERT_EQ(sound.onsets().size(), 1U);
  const double begin = sound.onsets().front();
  EXPECT_GT(sound.between(begin + 2.7, begin + 2.9).level(), -6);

  start({}, noScreen);
  ASSERT_TRUE(program->waitForEnd(5));
  EXPECT_EQ(program->status(), 1);
  EXPECT_NE(program->errors().find("no screen"), std::string::npos);
}

struct Resume : ProgramTest {
  /// The shared state, as a run before has left it for Ann.
  void remember(const std::string& playing, int seconds) {
    rig::writeText(state_, R"({"user": "Ann", "users": {"Ann": {"movies": {"playing": ")" + playing +
                               R"(", "seek": )" + std::to_string(seconds) + R"(000000}}, "Bob": {}}})");
  }
  void becomeUser(const std::string& name) {
    std::string text = rig::readText(state_);
    const std::size_t from = text.find("\"user\": \"") + 9;
    rig::writeText(state_, text.replace(from, text.find('"', from) - from, name));
  }
  /// Plays the film until a second of it, and gives the second at which it began.
  double playUntil(const std::string& name, double second) {
    start({name});
    const auto seen = [this] { return watch.sights(program->startedAt()); };
    EXPECT_TRUE(rig::waitUntil(15, [&] { return !seen().empty() && watch.number() >= second * 24; })) << name;
    program->signal(SIGTERM);
    expectEnd(sanitized ? 6 : 2);
    return seen().empty() ? -1 : seen().front().number / 24.0;
  }
  /// A word of the user's block of the state file.
  bool keeps(const std::string& user, const std::string& word) const {
    const std::string text = rig::readText(state_);
    const std::size_t from = text.find('"' + user + "\": {");
    return text.find(word, from) < text.find("\n\t\t}", from);
  }

  const std::filesystem::path state_ = at("persist.json");
};

TEST_F(Resume, EachUserGoesOnWhereThatUserStopped) {
  add("A/a.mkv", {.seconds = 30});
  add("B/b.mkv", {.seconds = 30});
  remember("", 0);
  EXPECT_LT(playUntil("A/a.mkv", 5), 1);
  becomeUser("Bob");
  EXPECT_NEAR(playUntil("A/a.mkv", 8), 5, 1.5) << "the folder knows where anybody stopped last";
  EXPECT_LT(playUntil("B/b.mkv", 3), 1);
  becomeUser("Ann");
  EXPECT_NEAR(playUntil("A/a.mkv", 6), 5, 1.5) << "not where Bob stopped";
  becomeUser("Bob");
  EXPECT_NEAR(playUntil("B/b.mkv", 4), 3, 1.5);
}

TEST_F(Resume, MarkAndPositionFollowFromWhereAFilmIsLeft) {
  const auto film = add("F/film.mkv", {.seconds = 30});
  remember(film, 26);
  EXPECT_NEAR(playUntil("F/film.mkv", 27.3), 26, 1.5);
  EXPECT_TRUE(keeps("Ann", "\"watched\": [\n\t\t\t\t\t\"" + film.string() + "\"\n"));
  EXPECT_TRUE(keeps("Ann", "\"seek\": 27")) << "beyond 90 % the position stays";
  EXPECT_FALSE(keeps("Bob", film.string()));

  start({"F/film.mkv"});
  expectEnd(sanitized ? 30 : 8);
  EXPECT_TRUE(keeps("Ann", "\"seek\": 0,"));
}

TEST_F(Resume, AviStartsAnew) {
  const auto film =
      add("old.avi", {.seconds = 10, .video = "-c:v mpeg4 -q:v 3", .sound = "", .container = "avi"});
  remember(film, 5);
  EXPECT_LT(playUntil("old.avi", 0.5), 0.5);
  EXPECT_NE(rig::readText(film.parent_path() / "playback.json").find("\"boundary\":1000000"),
            std::string::npos);
}

}  // namespace
}  // namespace tavek

// What stays of a film when it is left, for the next start of the program.
#include <signal.h>

#include "program/program_run.h"

namespace tavek {
namespace {

struct Resume : ProgramTest {
  /// The shared state, as a run before has left it.
  void remember(const std::string& user, const std::string& blocks) {
    rig::writeText(state_, R"({"user": ")" + user + R"(", "users": {)" + blocks + "}}");
  }
  static std::string block(const std::string& user, const std::filesystem::path& playing, int seconds) {
    return '"' + user + R"(": {"movies": {"playing": ")" + playing.string() + R"(", "seek": )" +
           std::to_string(seconds) + "000000}}";
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
  remember("Ann", block("Ann", "", 0) + "," + block("Bob", "", 0));
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
  remember("Ann", block("Ann", film, 26) + "," + block("Bob", "", 0));
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
  remember("Ann", block("Ann", film, 5));
  EXPECT_LT(playUntil("old.avi", 0.5), 0.5);
  EXPECT_NE(rig::readText(film.parent_path() / "playback.json").find("\"boundary\":1000000"),
            std::string::npos);
}

}  // namespace
}  // namespace tavek

// What the program makes of a messy library and the keys of the services, at its first and second start.

#include "program/program_run.h"
#include "rig/web_server.h"

namespace tavek {
namespace {

/// The services, as far as the library below concerns them.
rig::WebReply answerTo(const rig::WebRequest& request) {
  const std::string path = request.path();
  const std::string alien = R"({"id":348,"imdb_id":"tt0078748","title":"Alien","release_date":"1979-05-25",)"
                            R"("poster_path":"/alien.jpg","backdrop_path":"/ship.jpg"})";
  const bool asksForAlien = request.target.find("query=Alien") != std::string::npos;
  const std::string jpeg("\xff\xd8\xff\xe0 a picture");
  if (path == "/3/search/movie") return {.body = R"({"results":[)" + (asksForAlien ? alien : "") + "]}"};
  if (path == "/3/search/tv") return {.body = R"({"results":[{"id":5,"name":"Show"}]})"};
  if (path == "/3/tv/5/external_ids") return {.body = R"({"id":5,"tvdb_id":81189})"};
  if (path == "/3/movie/348") return {.body = alien};
  if (path == "/3/movie/348/images") return {.body = R"({"logos":[{"file_path":"/logo.png"}]})"};
  if (path.ends_with(".jpg")) return {.body = jpeg, .type = "image/jpeg"};
  if (path.ends_with(".png")) return {.body = "\x89PNG\r\n\x1a\n a logo", .type = "image/png"};
  if (path == "/v3/tv/81189")
    return {.body = R"({"name":"Show","tvthumb":[{"url":"file:///etc/passwd","lang":"en"}]})"};
  if (path == "/login") return {.body = R"({"data":{"token":"SECRET-TOKEN"}})"};
  if (path == "/series/81189/episodes/default")
    return {.body = R"({"data":{"episodes":[{"seasonNumber":1,"number":1,"name":"The Web"}]}})"};
  return {.status = 404, .body = R"({"status_code":34})"};
}

struct ScanTest : ProgramTest {
  ScanTest() {
    server.otherwise(answerTo);
    for (const char* name : {"TAVEK_TMDB_API", "TAVEK_TMDB_IMAGES", "TAVEK_FANART_API", "TAVEK_TVDB_API"})
      services[name] = server.base();
    rig::writeText(stage.home.path() / ".tmdb.json",
                   R"({"Key":"SECRET-A","FanartKey":"SECRET-B","TvdbKey":"SECRET-C"})");
  }
  /// The library's files but those of the program's state, each with its room.
  std::set<std::string> tree() const {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(stage.library.path())) {
      const std::string name = entry.path().lexically_relative(stage.library.path());
      if (entry.is_regular_file() && !name.starts_with("persist.json") && !name.ends_with("playback.json"))
        names.insert(name);
    }
    return names;
  }
  /// The status line of the home screen is there, or is not.
  bool tellsOfScan() const {
    return stage.screen.count(66, 700, 1220, [](std::uint32_t colour) { return colour > 0x808080U; }) > 0;
  }

  rig::WebServer server;
  rig::Environment services;
};

TEST_F(ScanTest, TidiesAndFillsALibraryOnceAndGivesItBack) {
  add("Alien.1979.1080p.mkv", {.width = 320, .height = 180, .seconds = 30, .firstNumber = 1000});
  rig::writeText(film("Alien.1979.1080p.en.srt"), "subtitles");
  rig::writeText(film("Family/Beach.mkv"), "a home video");
  fs::create_directories(at("tv/Show/Season 1"));
  fs::copy_file(film("Alien.1979.1080p.mkv"), at("tv/Show/Season 1/show.s01e01.web.mkv"));
  server.replies("/t/p/w342/alien.jpg", {{.status = 500}, {.body = "<html>", .type = "image/jpeg"}});
  const std::set<std::string> before = tree();
  start({"--debug"}, services);
  ASSERT_TRUE(rig::waitUntil(5, [&] { return tellsOfScan(); })) << "home stands, with the status line";
  ASSERT_TRUE(
      rig::waitUntil(20, [&] { return fs::exists(film("Alien (1979)/metadata.json")) && !tellsOfScan(); }));
  EXPECT_FALSE(fs::exists(film("Alien (1979)/poster.jpg"))) << "no page of an error is a picture";
  ASSERT_TRUE(stage.screen.focusWindow(5));
  stage.screen.press("Down");
  ASSERT_TRUE(rig::waitUntil(20, [&] { return fs::exists(at("tv/Show/Season 1/S01E01 - The Web.mkv")); }));
  rig::waitUntil(5, [&] { return !tellsOfScan(); });
  program->signal(SIGTERM);
  expectEnd(sanitized ? 6 : 2, false);
  EXPECT_EQ((program->output() + program->errors()).find("SECRET"), std::string::npos);
  const std::set<std::string> tidied{"movies/.tavek-renames.jsonl",
                                     "movies/Alien (1979)/Alien (1979).en.srt",
                                     "movies/Alien (1979)/Alien (1979).mkv",
                                     "movies/Alien (1979)/clearlogo.png",
                                     "movies/Alien (1979)/fanart.jpg",
                                     "movies/Alien (1979)/metadata.json",
                                     "movies/Family/Beach.mkv",
                                     "tv/.tavek-renames.jsonl",
                                     "tv/Show/Season 1/S01E01 - The Web.mkv",
                                     "tv/Show/tvdb.id"};
  EXPECT_EQ(tree(), tidied);
  // A second start fetches what was missing; a third one has nothing to ask of what is complete.
  server.reply("/t/p/w342/alien.jpg", {.body = "\xff\xd8\xff\xe0 a poster", .type = "image/jpeg"});
  for (const bool complete : {false, true}) {
    fs::remove(at("persist.json"));
    const std::size_t asked = server.requests().size();
    start({}, services);
    ASSERT_TRUE(rig::waitUntil(10, [&] { return fs::exists(film("Alien (1979)/poster.jpg")); }));
    rig::let(sanitized ? 4 : 1);
    program->signal(SIGTERM);
    expectEnd(sanitized ? 6 : 2, false);
    for (std::size_t i = asked; i < server.requests().size() && complete; ++i)
      EXPECT_NE(server.requests()[i].target.find("query=Beach"), std::string::npos)
          << server.requests()[i].target;
  }

  for (const char* room : {"movies", "tv"}) {
    start({"--undo-renames", room});
    ASSERT_TRUE(program->waitForEnd(10));
    EXPECT_EQ(program->status(), 0);
  }
  for (const char* made :
       {"movies/Alien (1979)", "movies/.tavek-renames.jsonl", "tv/.tavek-renames.jsonl", "tv/Show/tvdb.id"})
    fs::remove_all(at(made));
  EXPECT_EQ(tree(), before);
}

TEST_F(ScanTest, AFilmThatPlaysStaysWhereItIsAndAStallEndsWithTheProgram) {
  add("Alien.1979.mkv", {.width = 320, .height = 180, .seconds = 30, .firstNumber = 1000});
  rig::WebRequest search;
  search.target = "/3/search/movie?query=Alien";
  rig::WebReply late = answerTo(search);
  late.delay = 3;
  server.reply("/3/search/movie", late);
  server.reply("/3/movie/348/images", {.body = "{}", .stallAfter = 1});
  start({}, services);
  ASSERT_TRUE(rig::waitUntil(5, [&] { return tellsOfScan(); }) && stage.screen.focusWindow(5));
  stage.screen.press("Return");
  ASSERT_TRUE(waitForNumber(1072, 2000));
  rig::waitUntil(10, [&] { return server.requests().back().at < rig::now() - 3.5; });
  EXPECT_TRUE(fs::exists(film("Alien.1979.mkv")));
  stage.screen.press("XF86HomePage");
  ASSERT_TRUE(rig::waitUntil(10, [&] { return fs::exists(film("Alien (1979)/fanart.jpg")); }))
      << "once it has ended";
  const double endedAt = rig::now();
  program->signal(SIGTERM);
  expectEnd(sanitized ? 6 : 1, false);
  EXPECT_LE(rig::now() - endedAt, mild(1));
}

}  // namespace
}  // namespace tavek

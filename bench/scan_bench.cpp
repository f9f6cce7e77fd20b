// Measures the scans against a web server on the loopback address, and prints a table.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "base/paths.h"
#include "rig/stage.h"
#include "rig/web_server.h"
#include "scan/poster_scanner.h"
#include "scan/tv_art_scanner.h"
#include "state/state_store.h"

namespace tavek::bench {
namespace {

namespace fs = std::filesystem;
using Steady = std::chrono::steady_clock;

constexpr int films = 10'000;
constexpr int newFilms = 40;
constexpr int episodes = 500;

double seconds(auto action) {
  const Steady::time_point begin = Steady::now();
  action();
  return std::chrono::duration<double>(Steady::now() - begin).count();
}

double residentMb() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmRSS")) return std::strtod(line.c_str() + 6, nullptr) / 1024;
  return 0;
}

std::string contentOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void put(const fs::path& file, const std::string& bytes) {
  fs::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << bytes;
}

std::string details(const std::string& title) {
  return R"({"id":7,"imdb_id":"tt0000007","title":")" + title +
         R"(","release_date":"1999-01-01","poster_path":"/p.jpg","backdrop_path":"/b.jpg","overview":"x"})";
}

/// Complete films in folders of their own; a few files stand for all, by hard links.
void makeComplete(const fs::path& root) {
  if (fs::exists(root / "made")) return;
  fs::remove_all(root);
  for (const char* name : {"movie", "poster.jpg", "fanart.jpg", "clearlogo.png"})
    put(root / "parts" / name, "x");
  for (int i = 0; i < films; ++i) {
    const std::string title = "Film " + std::to_string(i);
    const fs::path folder = root / "movies" / (title + " (1999)");
    fs::create_directories(folder);
    fs::create_hard_link(root / "parts/movie", folder / (title + " (1999).mkv"));
    for (const char* name : {"poster.jpg", "fanart.jpg", "clearlogo.png"})
      fs::create_hard_link(root / "parts" / name, folder / name);
    std::ofstream(folder / "metadata.json") << details(title);
  }
  put(root / "made", "x");
}

/// The answers to all that the scans ask of a film or a series.
rig::WebReply answerTo(const rig::WebRequest& request, const std::string& picture, const std::string& logo) {
  const std::string path = request.path();
  if (path == "/3/search/movie") {
    const std::size_t at = request.target.find("Film+");
    const std::string number = request.target.substr(at + 5, request.target.find('&', at) - at - 5);
    return {.body = R"({"results":[)" + details("Film " + number) + "]}"};
  }
  if (path.ends_with("/images")) return {.body = R"({"logos":[{"file_path":"/l.png"}]})"};
  if (path.starts_with("/3/movie/")) return {.body = details("Film")};
  if (path.ends_with(".png")) return {.body = logo, .type = "image/png"};
  if (path.ends_with(".jpg")) return {.body = picture, .type = "image/jpeg"};
  if (path == "/login") return {.body = R"({"data":{"token":"t"}})"};
  if (path.starts_with("/v3/tv/")) return {.body = R"({"name":"Show"})"};
  if (path.starts_with("/series/")) {
    std::string list;
    for (int i = 1; i <= episodes; ++i)
      list += (i > 1 ? "," : "") + std::string(R"({"seasonNumber":1,"number":)") + std::to_string(i) +
              R"(,"name":"Title )" + std::to_string(i) + "\"}";
    return {.body = R"({"data":{"episodes":[)" + list + R"(]},"links":{"next":null}})"};
  }
  return {.status = 404, .body = "{}"};
}

void measureComplete(const rig::WebServer& server, const TidyContext& context) {
  const PosterScanner scanner("key", "", mediaRoot());
  const double memory = residentMb();
  const double first = seconds([&] { scanner.scan(mediaRoot() / "movies", context); });
  const double second = seconds([&] { scanner.scan(mediaRoot() / "movies", context); });
  std::printf(
      "| complete library of %d films | %.2f s, again %.2f s, goal <= 2 | %zu requests, goal 0 | %+.0f MB, "
      "goal <= 20 |\n",
      films, first, second, server.requests().size(), residentMb() - memory);
}

void measureNew(const rig::WebServer& server, const TidyContext& context) {
  const fs::path room = mediaRoot() / "kids";
  fs::remove_all(room);
  for (int i = 0; i < newFilms; ++i)
    put(room / ("Film " + std::to_string(i) + " 1999.mkv"), std::to_string(i));
  const std::size_t before = server.requests().size();
  const double time = seconds([&] { PosterScanner("key", "", room).scan(room, context); });
  std::printf("| new films | %.1f a second, goal >= 5 | %.1f requests each |\n", newFilms / time,
              double(server.requests().size() - before) / newFilms);
}

void measureEpisodes(const TidyContext& context) {
  const fs::path series = mediaRoot() / "tv/Show";
  fs::remove_all(series);
  for (int i = 1; i <= episodes; ++i)
    put(series / "Season 1" / ("show.s01e" + std::to_string(i) + ".mkv"), std::to_string(i));
  put(series / "tvdb.id", "81189");
  const TvArtScanner scanner({"key", "", "", "", "key", ""}, mediaRoot());
  const double time = seconds([&] { scanner.scan(context); });
  std::printf("| %d episodes renamed | %.2f s, goal <= 2 | %s |\n", episodes, time,
              fs::exists(series / "Season 1/S01E500 - Title 500.mkv") ? "all named" : "not all named");
}

/// From exec to the home screen, and from the signal to the end while a transfer stalls.
void measureProgram(rig::WebServer& server) {
  server.otherwise([](const rig::WebRequest&) { return rig::WebReply{.body = "{}", .stallAfter = 1}; });
  for (const bool keys : {false, true}) {
    rig::Stage stage;
    put(stage.library.path() / "movies/new film.mkv", "x");
    if (keys) put(stage.home.path() / ".tmdb.json", R"({"Key":"key"})");
    rig::Environment environment = stage.environment();
    for (const char* name : {"TAVEK_TMDB_API", "TAVEK_TMDB_IMAGES", "TAVEK_FANART_API", "TAVEK_TVDB_API"})
      environment[name] = server.base();
    rig::Program program({TAVEK_PROGRAM}, environment);
    rig::waitUntil(
        5, [&] { return stage.screen.count(540, 0, 1920, [](auto pixel) { return pixel != 0; }) > 0; });
    const double home = rig::now() - program.startedAt();
    rig::let(1.5);
    const double end = seconds([&] {
      program.signal(SIGTERM);
      program.waitForEnd(10);
    });
    std::printf("| program %s | home after %.0f ms | end after %.0f ms, goal <= 1000 |\n",
                keys ? "in mid-scan, stalled" : "without keys", home * 1000, end * 1000);
  }
}

}  // namespace
}  // namespace tavek::bench

int main() {
  using namespace tavek;
  const std::filesystem::path root = TAVEK_BENCH_MEDIA "/scan";
  rig::WebServer server;
  setenv("TAVEK_MEDIA_ROOT", root.c_str(), 1);
  for (const char* name : {"TAVEK_TMDB_API", "TAVEK_TMDB_IMAGES", "TAVEK_FANART_API", "TAVEK_TVDB_API"})
    setenv(name, server.base().c_str(), 1);
  bench::makeComplete(root);
  rig::Program pictures({"convert", "-size", "342x513", "plasma:", (root / "p.jpg").string()}, {});
  rig::Program logos({"convert", "-size", "300x100", "xc:red", (root / "l.png").string()}, {});
  pictures.waitForEnd(20);
  logos.waitForEnd(20);
  server.otherwise([picture = bench::contentOf(root / "p.jpg"), logo = bench::contentOf(root / "l.png")](
                       const rig::WebRequest& request) { return bench::answerTo(request, picture, logo); });
  StateStore store("");
  const Flag never;
  const TidyContext context{.stored = store.parts(), .stop = never, .scanTime = 1};
  bench::measureComplete(server, context);
  bench::measureNew(server, context);
  bench::measureEpisodes(context);
  bench::measureProgram(server);
  return 0;
}

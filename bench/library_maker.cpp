#include "bench/library_maker.h"

#include <cstdio>
#include <vector>

#include "rig/media.h"

namespace tavek::bench {
namespace {

namespace fs = std::filesystem;

constexpr int shows = 500;
constexpr int postersMade = 20;

std::string titled(const char* word, int number) {
  char text[32];
  std::snprintf(text, sizeof text, "%s %05d", word, number);
  return text;
}

std::vector<fs::path> makePosters(const fs::path& folder) {
  std::vector<fs::path> posters;
  for (int i = 0; i < postersMade; ++i) {
    posters.push_back(rig::makeFile(
        "-f lavfi -i testsrc2=s=342x513,noise=alls=" + std::to_string(5 + i) + " -frames:v 1 -q:v 3 OUT",
        "jpg", folder));
  }
  return posters;
}

/// Half of the films have a poster of their own name, half a poster.jpg.
void makeFilms(const fs::path& room, int count, const fs::path& film, const std::vector<fs::path>& posters) {
  for (int i = 0; i < count; ++i) {
    const std::string title = titled("Film", i);
    const fs::path folder = room / (title + " (" + std::to_string(1950 + i % 70) + ")");
    fs::create_directories(folder);
    fs::create_hard_link(film, folder / (title + ".mkv"));
    fs::create_hard_link(posters[static_cast<std::size_t>(i % postersMade)],
                         folder / (i % 2 == 0 ? title + ".jpg" : "poster.jpg"));
  }
}

void makeShows(const fs::path& room, const fs::path& film, const std::vector<fs::path>& posters) {
  for (int i = 0; i < shows; ++i) {
    const fs::path show = room / titled("Show", i);
    fs::create_directories(show / "Season 1");
    fs::create_hard_link(posters[static_cast<std::size_t>(i % postersMade)], show / "poster.jpg");
    for (const char* episode : {"S01E01 One.mkv", "S01E02 Two.mkv"}) {
      fs::create_hard_link(film, show / "Season 1" / episode);
    }
  }
}

}  // namespace

std::string filmRoom(int count) {
  return count == 10000 ? "movies" : "films" + std::to_string(count);
}

void makeLibrary(const fs::path& root) {
  if (fs::exists(root)) return;
  const fs::path draft = root.string() + ".draft";
  const fs::path parts = root.string() + ".parts";
  fs::remove_all(draft);
  fs::create_directories(parts);
  // Long enough not to end under the strip.
  const fs::path film = rig::makeClip({.width = 160, .height = 90, .seconds = 60}, parts);
  const std::vector<fs::path> posters = makePosters(parts);
  for (const int count : {1000, 3000, 10000}) makeFilms(draft / filmRoom(count), count, film, posters);
  makeShows(draft / "tv", film, posters);
  fs::rename(draft, root);
}

}  // namespace tavek::bench

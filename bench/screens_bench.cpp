// Measures the music screen, an album's tags, the screensaver over a large library and the settings, in one
// process on a screen that nobody sees, and prints a table.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

#include "base/paths.h"
#include "display/display.h"
#include "library/album.h"
#include "library/media_paths.h"
#include "state/state_store.h"

namespace tavek::bench {
namespace {

namespace fs = std::filesystem;
using Steady = std::chrono::steady_clock;

constexpr int songs = 300;
constexpr int albums = 40;
constexpr int films = 10'000;

double milliseconds(auto action) {
  const Steady::time_point begin = Steady::now();
  action();
  return std::chrono::duration<double, std::milli>(Steady::now() - begin).count();
}

/// The machine's time, some minutes on.
class ShiftedClock final : public Clock {
 public:
  Time now() const override { return steadyClock().now() + shift_; }
  void sleepUntil(Time time) override { steadyClock().sleepUntil(time - shift_); }
  void shift(std::chrono::seconds by) { shift_ += by; }

 private:
  std::chrono::seconds shift_{0};
};

void ffmpeg(const std::string& words, const fs::path& file) {
  const std::string command = "ffmpeg -nostdin -y -loglevel error " + words + " '" + file.string() + "'";
  if (std::system(command.c_str()) != 0) std::abort();
}

fs::path song(int number) {
  return musicRoot() / "Artist/Album" / ("Song " + std::to_string(number) + ".mp3");
}

void makeLibrary() {
  if (fs::exists(mediaRoot() / "made")) return;
  fs::remove_all(mediaRoot());
  fs::create_directories(song(1).parent_path());
  ffmpeg("-f lavfi -i sine=d=30 -metadata title=Song -metadata artist=Artist -metadata album=Album", song(1));
  for (int i = 2; i <= songs; ++i) fs::copy_file(song(1), song(i));
  for (int i = 1; i <= albums; ++i) {
    const fs::path folder = musicRoot() / "Artist" / ("Other " + std::to_string(i));
    fs::create_directories(folder);
    fs::create_hard_link(song(1), folder / "Song.mp3");
  }
  const fs::path picture = mediaRoot() / "picture.jpg";
  ffmpeg("-f lavfi -i mandelbrot=s=1920x1080 -frames:v 1", picture);
  fs::create_hard_link(picture, song(1).parent_path() / "backdrop.jpg");
  for (int i = 0; i < films; ++i) {
    const std::string name = "Film " + std::to_string(i) + " (1999)";
    const fs::path folder = mediaRoot() / "movies" / name;
    fs::create_directories(folder);
    std::ofstream(folder / (name + ".mkv")) << '.';
    fs::create_hard_link(picture, folder / "fanart.jpg");
  }
  std::ofstream(mediaRoot() / "made") << '.';
}

void measureAlbum() {
  const auto list = [](TagReading reading) { return albumTracks(song(1), reading, Flag()).size(); };
  std::size_t count = 0;
  const double unknown = milliseconds([&] { count = list(TagReading::Known); });
  const double reading = milliseconds([&] { list(TagReading::Read); });
  const double known = milliseconds([&] { list(TagReading::Known); });
  std::printf("| album of %zu | names %.2f ms | tags read %.0f ms | known %.2f ms |\n", count, unknown,
              reading, known);
}

/// Passes of a loop that draws, in milliseconds.
struct Passes {
  std::vector<double> ms;
  double median() {
    std::ranges::sort(ms);
    return ms[ms.size() / 2];
  }
  double longest() const { return *std::ranges::max_element(ms); }
};

Uint32 middle(Display& display) {
  const SDL_Rect place{960, 300, 1, 1};
  Uint32 pixel = 0;
  SDL_RenderReadPixels(display.renderer(), &place, SDL_PIXELFORMAT_ARGB8888, &pixel, sizeof pixel);
  return pixel & 0xffffff;
}

void draw(Display& display, Passes& passes, int count) {
  for (; count > 0; --count) {
    passes.ms.push_back(milliseconds([&] {
      display.pollInput();
      display.presentBlank();
    }));
    SDL_Delay(10);
  }
}

void measureMusicStrip(Display& display) {
  display.setVideoPlaying(false);
  display.openPosterFolder(musicRoot());
  display.showStrip(true);
  Passes passes;
  while (display.posters().list().size() < albums) {
    draw(display, passes, 1);
    display.takePendingPosters(240, albums);
  }
  draw(display, passes, 30);
  int most = 0;
  for (int i = 0; i < albums / 2; ++i) {
    const int before = display.posters().selectedPoster();
    SDL_Event event{};
    event.type = SDL_KEYDOWN;
    event.key.keysym.sym = SDLK_RIGHT;
    SDL_PushEvent(&event);
    event.type = SDL_KEYUP;
    SDL_PushEvent(&event);
    int taken = 0;
    for (; taken < 9 && display.posters().selectedPoster() == before; ++taken) draw(display, passes, 1);
    most = std::max(most, taken);
    draw(display, passes, 10);
  }
  std::printf(
      "| strip over music | a step is seen after %d passes at most, goal <= 2 | pass median %.1f ms |\n",
      most, passes.median());
}

void measureMusic(const Stored& stored) {
  Display display(0, 0, 1920, 1080, Orientation::OrientationAuto, stored, steadyClock());
  display.leaveHome();
  display.selectRoomForPath(song(1));
  display.alignWithItem(song(1));
  display.setVideoPlaying(true);
  Passes loading;
  draw(display, loading, 200);
  Passes passes;
  draw(display, passes, 200);
  std::printf("| music, 1080p | pass median %.1f ms, goal <= 12 | longest while loading %.1f ms |\n",
              passes.median(), loading.longest());
  measureMusicStrip(display);
}

std::uint64_t pictureOf(Display& display) {
  static std::vector<Uint32> pixels(1920 * 1080);
  SDL_RenderReadPixels(display.renderer(), nullptr, SDL_PIXELFORMAT_ARGB8888, pixels.data(), 1920 * 4);
  std::uint64_t hash = 0;
  for (const Uint32 pixel : pixels) hash = hash * 31 + pixel;
  return hash;
}

/// Passes until the key has changed the picture.
int passesUntilSeen(Display& display, SDL_Keycode key, Passes& passes) {
  draw(display, passes, 1);
  const std::uint64_t before = pictureOf(display);
  SDL_Event event{};
  event.type = SDL_KEYDOWN;
  event.key.keysym.sym = key;
  SDL_PushEvent(&event);
  int taken = 0;
  do draw(display, passes, 1);
  while (++taken < 9 && pictureOf(display) == before);
  return taken;
}

void measureSettings(const Stored& stored) {
  Display display(0, 0, 1920, 1080, Orientation::OrientationAuto, stored, steadyClock());
  display.leaveHome();
  display.setVideoPlaying(true);
  display.setVideoPlaying(false);
  for (int i = 0; i < 20; ++i) stored.users.addUser("User " + std::to_string(i));
  const struct {
    const char* tab;
    std::vector<SDL_Keycode> keys;  ///< behind the one that enters the page
  } pages[] = {{"users", {SDLK_RIGHT, SDLK_RIGHT, SDLK_DOWN, SDLK_RETURN}},
               {"audio", {SDLK_UP}},
               {"hue", {SDLK_DOWN}}};
  for (const auto& [tab, keys] : pages) {
    stored.settings.setSettingsTab(tab);
    Passes passes;
    int most = passesUntilSeen(display, SDLK_MENU, passes);
    most = std::max(most, passesUntilSeen(display, SDLK_RETURN, passes));
    for (const SDL_Keycode key : keys) most = std::max(most, passesUntilSeen(display, key, passes));
    draw(display, passes, 60);
    std::printf(
        "| settings, %s | a key is seen after %d passes at most, goal <= 2 | pass median %.1f ms, goal <= 10 "
        "|\n",
        tab, most, passes.median());
    display.closeSettings();
  }
}

double residentMb() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);)
    if (line.starts_with("VmRSS")) return std::strtod(line.c_str() + 6, nullptr) / 1024;
  return 0;
}

void measureSaver(const Stored& stored) {
  ShiftedClock clock;
  Display display(0, 0, 1920, 1080, Orientation::OrientationAuto, stored, clock);
  display.goHome(true);
  display.selectRoomForPath(mediaRoot() / "movies/x");
  Passes before;
  draw(display, before, 300);
  const double memory = residentMb();
  clock.shift(std::chrono::seconds(301));
  Passes passes;
  const Steady::time_point begin = Steady::now();
  do draw(display, passes, 1);
  while (middle(display) == 0 && Steady::now() < begin + std::chrono::seconds(20));
  const double first = std::chrono::duration<double, std::milli>(Steady::now() - begin).count();
  draw(display, passes, 200);
  const std::clock_t cpu = std::clock();
  const Steady::time_point rest = Steady::now();
  Passes resting;
  draw(display, resting, 300);
  const double seconds = std::chrono::duration<double>(Steady::now() - rest).count();
  std::printf(
      "| saver, %d films | first slide %.0f ms | longest pass %.1f ms | %+.0f MB | at rest %.1f %% of a core "
      "|\n",
      films, first, passes.longest(), residentMb() - memory,
      100 * double(std::clock() - cpu) / CLOCKS_PER_SEC / seconds);
}

}  // namespace
}  // namespace tavek::bench

int main() {
  using namespace tavek;
  setenv("TAVEK_MEDIA_ROOT", TAVEK_BENCH_MEDIA "/screens", 1);
  setenv("SDL_VIDEODRIVER", "offscreen", 0);
  setenv("SDL_RENDER_DRIVER", "software", 0);
  bench::makeLibrary();
  bench::measureAlbum();
  StateStore store("");
  bench::measureMusic(store.parts());
  bench::measureSaver(store.parts());
  bench::measureSettings(store.parts());
  return 0;
}

// Measures the listing of a large library and the loading of its posters, in one process on a screen that
// nobody sees, and prints a table.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <SDL_image.h>

#include "base/paths.h"
#include "bench/library_maker.h"
#include "display/display.h"
#include "library/media_paths.h"
#include "library/poster_listing.h"
#include "state/state_store.h"

namespace tavek::bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int screenful = 11;
constexpr int posterHeight = 240;

double milliseconds(const std::function<void()>& action) {
  const Clock::time_point begin = Clock::now();
  action();
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double median(int runs, const std::function<double()>& measure) {
  std::vector<double> values;
  for (int i = 0; i < runs; ++i) values.push_back(measure());
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

double findMs(const fs::path& room) {
  const std::string command = "find '" + room.string() + "' -type f > /dev/null";
  return milliseconds([&] {
    if (std::system(command.c_str()) != 0) std::abort();
  });
}

double decodeMs(const std::vector<fs::path>& files) {
  return milliseconds([&] {
    for (const fs::path& file : files) SDL_FreeSurface(IMG_Load(file.c_str()));
  });
}

std::vector<fs::path> firstImages(const fs::path& room) {
  const Flag stop;
  PosterListing listing = listPosters(room, stop);
  std::vector<fs::path> files;
  for (int i = 0; i < screenful; ++i) files.push_back(listing.posters.at(static_cast<std::size_t>(i)).image);
  return files;
}

/// Some words, so that titles differ as those of films do.
std::string titleOf(int number) {
  constexpr const char* words[] = {"night", "river",  "the",  "last",  "golden", "house", "of",    "summer",
                                   "king",  "lost",   "city", "sea",   "moon",   "wolf",  "star",  "happy",
                                   "dark",  "return", "love", "blue",  "train",  "war",   "man",   "woman",
                                   "story", "road",   "fire", "ghost", "song",   "dream", "child", "island"};
  std::string title;
  for (unsigned rest = static_cast<unsigned>(number) * 2654435761U >> 8; rest > 0; rest /= 64)
    title += std::string(words[rest % 32]) + ' ';
  return title + "(" + std::to_string(1900 + number % 120) + ")";
}

void measureListing() {
  for (const int count : {1000, 3000, 10000}) {
    const fs::path room = mediaRoot() / filmRoom(count);
    const Flag stop;
    classifyFolder(room, stop);
    std::size_t listed = 0;
    const double ms =
        median(5, [&] { return milliseconds([&] { listed = listPosters(room, stop).posters.size(); }); });
    std::printf("| listing of %5d films | %6.1f ms | %4.1f us each | find: %5.1f ms | %zu listed |\n", count,
                ms, 1000 * ms / count, findMs(room), listed);
  }
}

/// Ten thousand films in one folder, whose order is told for each fifth.
void measureOrder() {
  constexpr int films = 10'000;
  const fs::path room = fs::temp_directory_path() / "tavek-bench-order";
  fs::create_directories(room);
  std::string order = "{\"order\": [";
  for (int i = 0; i < films; ++i) {
    const std::string name = titleOf(i);
    std::ofstream(room / (name + ".mkv")) << '.';
    std::ofstream(room / (name + ".jpg")) << '.';
    if (i % 5 == 0) order += "\"" + name + ".jpg\", ";
  }
  const auto listing = [&] {
    return median(5, [&] { return milliseconds([&] { listPosters(room, Flag()); }); });
  };
  const double without = listing();
  std::ofstream(room / "series.json") << order << "0]}";
  const double with = listing();
  std::printf("| listing by series.json | %6.1f ms | %.2f of that by name (%.1f ms), goal <= 1.15 |\n", with,
              with / without, without);
  fs::remove_all(room);
}

/// What passes of the loop cost while a room is loaded. Milliseconds.
struct Loading {
  double toScreenful = 0;
  double longestPump = 0;  ///< input and hand-over
  double longestPass = 0;  ///< the same with the drawing
};

Loading load(Display& display, const fs::path& room, std::size_t posters, int perPass) {
  Loading result;
  const Clock::time_point begin = Clock::now();
  const double opening = milliseconds([&] { display.openPosterFolder(room); });
  result.longestPump = opening;
  while (display.posters().list().size() < posters) {
    const double pump = milliseconds([&] {
      display.pollInput();
      display.takePendingPosters(posterHeight, perPass);
    });
    const double drawing = milliseconds([&] { display.presentBlank(); });
    result.longestPump = std::max(result.longestPump, pump);
    result.longestPass = std::max(result.longestPass, pump + drawing);
  }
  result.toScreenful = std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
  return result;
}

void measureFirstScreen(Display& display, const char* name) {
  const fs::path room = mediaRoot() / name;
  const std::vector<fs::path> files = firstImages(room);
  const double floor = median(5, [&] { return decodeMs(files) + findMs(room); });
  std::vector<double> times;
  Loading worst;
  for (int run = 0; run < 5; ++run) {
    const Loading loading = load(display, room, screenful, screenful);
    times.push_back(loading.toScreenful);
    worst.longestPump = std::max(worst.longestPump, loading.longestPump);
    worst.longestPass = std::max(worst.longestPass, loading.longestPass);
    display.openPosterFolder(mediaRoot() / "nothing");
  }
  std::sort(times.begin(), times.end());
  std::printf(
      "| %-6s first %d posters | %6.1f ms | %4.2f of decode + find (%.1f ms), goal <= 1.5 | longest pump "
      "%.1f ms, goal <= 8 | longest pass %.1f ms |\n",
      name, screenful, times[2], times[2] / floor, floor, worst.longestPump, worst.longestPass);
}

void measureMemory(Display& display) {
  const fs::path room = mediaRoot() / "movies";
  const Loading loading = load(display, room, 10000, 4);
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line) && !line.starts_with("VmHWM")) {
  }
  std::printf("| all 10000 posters | %.1f s | longest pump %.1f ms | peak memory %.2f GiB |\n",
              loading.toScreenful / 1000, loading.longestPump,
              std::strtod(line.c_str() + 6, nullptr) / (1 << 20));
}

/// A picture of 1080p, grey.
class Picture {
 public:
  PictureView next() {
    ++serial_;
    return {.planes = {luma_.data(), chroma_.data(), chroma_.data()},
            .pitches = {1920, 960, 960},
            .width = 1920,
            .height = 1080,
            .serial = serial_,
            .sampleAspect = 1.0};
  }

 private:
  std::vector<std::uint8_t> luma_ = std::vector<std::uint8_t>(1920 * 1080, 120);
  std::vector<std::uint8_t> chroma_ = std::vector<std::uint8_t>(960 * 540, 128);
  std::uint64_t serial_ = 0;
};

/// Passes of the loop over a running picture: median and 99th percentile, in milliseconds.
void measurePasses(Display& display, const char* what, bool keys) {
  Picture picture;
  std::vector<double> passes;
  int shown = 0;
  for (int i = 0; i < 200; ++i) {
    const int before = display.posters().selectedPoster();
    if (keys) {
      SDL_Event event{};
      event.type = SDL_KEYDOWN;
      event.key.keysym.sym = i % 40 < 20 ? SDLK_RIGHT : SDLK_LEFT;
      SDL_PushEvent(&event);
    }
    passes.push_back(milliseconds([&] {
      display.pollInput();
      display.presentFrame(picture.next(), 0);
    }));
    shown += display.posters().selectedPoster() != before ? 1 : 0;
  }
  std::sort(passes.begin(), passes.end());
  std::printf("| %-40s | median %5.1f ms | 99th percentile %5.1f ms |", what, passes[100], passes[198]);
  if (keys) std::printf(" %d of 200 keys shown by the frame of their own pass |", shown);
  std::printf("\n");
}

void measureStrip(const Stored& stored, const char* room, const char* what) {
  Display display(0, 0, 3840, 2160, Orientation::OrientationAuto, stored, steadyClock());
  if (!display.usable()) return;
  display.setVideoPlaying(false);
  display.selectRoomForPath(mediaRoot() / room);
  load(display, mediaRoot() / room, std::string(room) == "movies" ? 100 : 2, screenful);
  measurePasses(display, (std::string(what) + ", film alone").c_str(), false);
  display.showStrip(true);
  for (int i = 0; i < 20; ++i) display.presentBlank();
  measurePasses(display, (std::string(what) + ", with the strip").c_str(), false);
  measurePasses(display, (std::string(what) + ", keys on the strip").c_str(), true);
}

}  // namespace
}  // namespace tavek::bench

int main() {
  using namespace tavek;
  const std::filesystem::path root = TAVEK_BENCH_MEDIA "/library";
  setenv("TAVEK_MEDIA_ROOT", root.c_str(), 1);
  setenv("SDL_VIDEODRIVER", "offscreen", 0);
  // As the program draws on a machine without a graphics card.
  setenv("SDL_RENDER_DRIVER", "software", 0);
  bench::makeLibrary(root);
  bench::measureListing();
  bench::measureOrder();
  StateStore store(stateFile());
  {
    Display display(0, 0, 1920, 1080, Orientation::OrientationAuto, store.parts(), steadyClock());
    if (!display.usable()) return 1;
    bench::measureFirstScreen(display, "movies");
    bench::measureFirstScreen(display, "tv");
    bench::measureMemory(display);
  }
  bench::measureStrip(store.parts(), "movies", "4K, room of 10000");
  bench::measureStrip(store.parts(), "tv/Show 00000/Season 1", "4K, with a label");
  return 0;
}

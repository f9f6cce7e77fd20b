// simulate <keys> <seed>: the whole run of a library with made-up media, on a clock that takes no time, under
// random keys and faults. Fails if a pass freezes, the end takes long, or the stored state is not whole.
#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <sys/resource.h>
#include <thread>

#include <SDL.h>

#include "app/library_run.h"
#include "app/options.h"
#include "base/background_job.h"
#include "base/paths.h"
#include "display/display.h"
#include "rig/media.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/temp_folder.h"
#include "support/turned_clock.h"
#include "viewing/item_loop.h"

extern "C" {
#include <libavutil/log.h>
}

namespace {

namespace fs = std::filesystem;
using namespace tavek;
using std::chrono::milliseconds;
using std::chrono::seconds;
using SteadyClock = std::chrono::steady_clock;

struct Medium {
  const char* path;
  const char* words;
};

constexpr const char* film =
    "-f lavfi -i testsrc=s=32x18:r=24:d=12 -f lavfi -i sine=d=12 -c:v ffv1 -g 12 -c:a flac OUT";
constexpr const char* song = "-f lavfi -i sine=d=4 -c:a flac OUT";

constexpr Medium media[] = {
    {"Movies/Alpha (2001)/Alpha (2001).mkv", film},
    {"Movies/Брат (1997)/Брат (1997).mkv", "-f lavfi -i testsrc=s=32x18:r=24:d=2 -c:v ffv1 OUT"},
    {"Movies/Old (1950)/Old (1950).avi", "-f lavfi -i testsrc=s=32x18:r=24:d=6 -c:v mpeg4 OUT"},
    {"TV/Show/Season 1/Show S01E01.mkv", film},
    {"TV/Show/Season 1/Show S01E02.mkv", film},
    {"Music/Tides/01 Ebb.flac", song},
    {"Music/Tides/02 Flow.flac", song},
};

void makeLibrary(const fs::path& root) {
  for (const Medium& medium : media) {
    const fs::path path = root / medium.path;
    fs::create_directories(path.parent_path());
    // Without an image a film is not in the strip.
    const fs::path poster =
        rig::makeFile("-f lavfi -i color=red:s=20x30 -frames:v 1 OUT", "jpg", TAVEK_TEST_MEDIA);
    fs::copy(poster, path.parent_path() / "poster.jpg", fs::copy_options::skip_existing);
    fs::copy(rig::makeFile(medium.words, path.extension().string().substr(1), TAVEK_TEST_MEDIA), path);
  }
  fs::create_directories(root / "Movies/Broken (2000)");
  std::ofstream(root / "Movies/Broken (2000)/Broken (2000).mkv") << "no film";
}

constexpr std::array keys{SDLK_RETURN,      SDLK_RETURN,   SDLK_RETURN,     SDLK_LEFT,
                          SDLK_RIGHT,       SDLK_UP,       SDLK_DOWN,       SDLK_ESCAPE,
                          SDLK_SPACE,       SDLK_AC_HOME,  SDLK_AUDIOPLAY,  SDLK_AUDIONEXT,
                          SDLK_AUDIOPREV,   SDLK_VOLUMEUP, SDLK_VOLUMEDOWN, SDLK_AUDIOFASTFORWARD,
                          SDLK_AUDIOREWIND, SDLK_a,        SDLK_m,          SDLK_s};

/// A clock that has a viewer with a restless hand before it: each sleep of the main thread is a pass.
class RestlessClock final : public Clock {
 public:
  RestlessClock(long keysToPress, std::uint64_t seed, fs::path root)
      : random_(seed), left_(keysToPress), root_(std::move(root)) {}

  Time now() const override { return clock_.now(); }
  void sleepUntil(Time time) override {
    if (std::this_thread::get_id() == main_) pass();
    clock_.sleepUntil(time);
  }

  test::FakeSound* card = nullptr;
  double longestPass() const { return longestPass_; }
  SteadyClock::time_point quitAt() const { return quitAt_; }

 private:
  bool chance(unsigned one) { return random_() % one == 0; }

  void pass() {
    const auto now = SteadyClock::now();
    if (passAt_ != SteadyClock::time_point{})
      longestPass_ = std::max(longestPass_, std::chrono::duration<double>(now - passAt_).count());
    passAt_ = now;
    if (left_ <= 0) return quit();
    if (chance(2)) press();
    if (chance(500)) card->fail(faultOfSound());
    if (chance(2000)) takeAwayOrBringBack();
    if (chance(2000)) fillDisk(!full_);
    if (chance(5000)) std::ofstream(root_ / "persist.json") << "{\"users\": [{";
  }

  void press() {
    --left_;
    SDL_Event event{};
    event.type = held_ != 0 ? SDL_KEYUP : SDL_KEYDOWN;
    event.key.keysym.sym = held_ != 0 ? held_ : keys[random_() % keys.size()];
    // Some keys are held, and repeat meanwhile.
    if (held_ != 0 && chance(3)) {
      event.type = SDL_KEYDOWN;
      event.key.repeat = 1;
    }
    held_ = event.type == SDL_KEYDOWN ? event.key.keysym.sym : 0;
    SDL_PushEvent(&event);
  }

  test::FakeSound::Faults faultOfSound() {
    switch (random_() % 8) {
      case 0:
        return {.refuses = true};
      case 1:
        return {.hangs = true};
      case 2:
        return {.standsStill = true};
      case 3:
        return {.gone = true};
      default:
        return {};
    }
  }

  void takeAwayOrBringBack() {
    std::error_code ignored;
    if (away_.empty()) {
      away_ = root_ / media[random_() % std::size(media)].path;
      fs::rename(away_, root_ / "away", ignored);
    } else {
      fs::rename(root_ / "away", away_, ignored);
      away_.clear();
    }
  }

  void fillDisk(bool full) {
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = full ? 0 : limit.rlim_max;
    setrlimit(RLIMIT_FSIZE, &limit);
    full_ = full;
  }

  void quit() {
    if (quitAt_ != SteadyClock::time_point{}) return;
    fillDisk(false);
    card->fail({});
    quitAt_ = SteadyClock::now();
    SDL_Event event{};
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
  }

  const std::thread::id main_ = std::this_thread::get_id();
  test::TurnedClock clock_;
  std::mt19937_64 random_;
  long left_;
  const fs::path root_;
  SDL_Keycode held_ = 0;
  fs::path away_;
  bool full_ = false;
  double longestPass_ = 0;
  SteadyClock::time_point passAt_{};
  SteadyClock::time_point quitAt_{};
};

bool holds(bool what, const char* complaint) {
  if (!what) std::printf("%s\n", complaint);
  return what;
}

bool stateIsWhole(const fs::path& file) {
  std::ifstream input(file);
  const std::string text{std::istreambuf_iterator<char>(input), {}};
  const bool whole = text.starts_with('{') && text.find_last_of('}') + 3 > text.size();
  return holds(whole && text.find("users") != std::string::npos, "the stored state is not whole") &&
         holds(text.find("\"seek\": -") == std::string::npos, "a stored position is negative");
}

bool simulate(long count, std::uint64_t seed, const fs::path& root) {
  RestlessClock clock(count, seed, root);
  test::FakeSound card(clock);
  clock.card = &card;
  StateStore state(stateFile());
  const Stored stored = state.parts();
  double ending = 0;
  {
    Display display(0, 0, 320, 180, Orientation::OrientationAuto, stored, clock);
    const PlayContext context{
        .display = display, .stored = stored, .clock = clock, .language = {}, .soundDevice = card.factory()};
    display.goHome(true);
    runLibrary(context, LaunchOptions{});
    state.flush();
    ending = std::chrono::duration<double>(SteadyClock::now() - clock.quitAt()).count();
  }
  std::printf("sound opened %d times, longest pass %.3f s, end %.3f s\n", card.timesOpened(),
              clock.longestPass(), ending);
  const bool good = holds(clock.longestPass() < 2, "a pass froze") && holds(ending < 2, "the end took long");
  return stateIsWhole(stateFile()) && good && holds(card.end(), "a thread hangs") &&
         holds(card.timesOpened() > count / 1000, "hardly anything was played");
}

}  // namespace

int main(int count, char** words) {
  if (count != 3) return std::fputs("usage: simulate <keys> <seed>\n", stderr), 2;
  const test::TempFolder folder;
  makeLibrary(folder.path());
  setenv("TAVEK_MEDIA_ROOT", folder.path().c_str(), 1);
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  setenv("SDL_RENDER_DRIVER", "software", 1);
  std::signal(SIGXFSZ, SIG_IGN);
  av_log_set_level(AV_LOG_QUIET);
  // What the program tells of broken items is not of interest here.
  std::freopen("/dev/null", "w", stderr);
  std::printf("seed %s\n", words[2]);
  std::fflush(stdout);
  const bool good = simulate(std::stol(words[1]), std::stoull(words[2]), folder.path());
  std::printf("seed %s: %s\n", words[2], good ? "all held" : "failed");
  return good ? 0 : 1;
}

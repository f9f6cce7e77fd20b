#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <sys/resource.h>
#include <thread>

#include <SDL.h>

#include "simulate/made_library.h"
#include "simulate/stored_text.h"
#include "state/small_file.h"
#include "support/fake_device.h"
#include "support/turned_clock.h"

namespace tavek::test {

inline constexpr std::array keys{SDLK_RETURN,      SDLK_RETURN,   SDLK_RETURN,     SDLK_LEFT,
                                 SDLK_RIGHT,       SDLK_UP,       SDLK_DOWN,       SDLK_ESCAPE,
                                 SDLK_SPACE,       SDLK_AC_HOME,  SDLK_AUDIOPLAY,  SDLK_AUDIONEXT,
                                 SDLK_AUDIOPREV,   SDLK_VOLUMEUP, SDLK_VOLUMEDOWN, SDLK_AUDIOFASTFORWARD,
                                 SDLK_AUDIOREWIND, SDLK_a,        SDLK_m,          SDLK_s,
                                 SDLK_PRINTSCREEN, SDLK_AC_BACK,  SDLK_MENU,       SDLK_BACKSPACE,
                                 SDLK_TAB,         SDLK_DELETE};

/// A clock that has a viewer with a restless hand before it, and surroundings that fail. Each sleep of the
/// main thread is a pass; the sleep takes no time but what the workers need.
class RestlessViewer final : public Clock {
 public:
  using RealClock = std::chrono::steady_clock;

  /// What is pressed and what fails follows from the seed alone.
  RestlessViewer(long keysToPress, std::uint64_t seed, std::filesystem::path root,
                 std::filesystem::path stateFile)
      : random_(seed), left_(keysToPress), root_(std::move(root)), stateFile_(std::move(stateFile)) {}

  Time now() const override { return clock_.now(); }
  void sleepUntil(Time time) override {
    if (std::this_thread::get_id() == main_) {
      longestSleep_ = std::max<std::chrono::duration<double>>(longestSleep_, time - clock_.now());
      pass();
    }
    clock_.sleepUntil(time);
  }

  test::FakeSound* card = nullptr;
  /// Called every now and then, between two passes.
  std::function<void()> check;
  /// Whether a key may rename or remove a user.
  std::function<bool()> editsUsers;

  /// Of real time, between two sleeps of the main thread.
  std::chrono::duration<double> longestPass() const { return longestPass_; }
  /// Of the clock's time, in which no key counts.
  std::chrono::duration<double> longestSleep() const { return longestSleep_; }
  RealClock::time_point quitAt() const { return quitAt_; }
  long keysLeft() const { return left_; }
  /// Another instance has added it, and nobody has garbled the file since.
  bool guestIsKnown() const { return guestAdded_; }
  bool stateIsGarbled() const { return garbled_; }

 private:
  bool chance(unsigned one) { return random_() % one == 0; }

  void pass() {
    const auto now = RealClock::now();
    if (passAt_ != RealClock::time_point{})
      longestPass_ = std::max<std::chrono::duration<double>>(longestPass_, now - passAt_);
    if (left_ <= 0) {
      quit();
    } else {
      if (chance(2) && awake()) press();
      fail();
      if (chance(1000)) check();
    }
    passAt_ = RealClock::now();
  }

  /// At times the viewer leaves for so long that the screensaver comes.
  bool awake() {
    if (held_ == 0 && chance(20'000)) backAt_ = now() + std::chrono::seconds(310 + random_() % 60);
    return now() >= backAt_;
  }

  void press() {
    --left_;
    if (editsUsers()) guestAdded_ = false;
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
    if (!chance(50)) return;
    event = {.type = SDL_TEXTINPUT};
    std::strcpy(event.text.text, "\xC3\x84\"x");
    SDL_PushEvent(&event);
  }

  void fail() {
    if (chance(500)) card->fail(faultOfSound());
    if (chance(2000)) takeAwayOrBringBack();
    if (chance(2000)) fillDisk(!full_);
    if (chance(5000)) garbleState();
    if (chance(5000)) addGuest();
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
    namespace fs = std::filesystem;
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

  void garbleState() {
    if (full_) return;
    std::ofstream(stateFile_) << "{\"users\": [{";
    garbled_ = true;
    guestAdded_ = false;
  }

  void addGuest() {
    const FileLock lock(stateFile_.string() + ".lock");
    if (full_ || !lock.held() || !addUser(stateFile_, "Guest")) return;
    garbled_ = false;
    guestAdded_ = true;
  }

  void quit() {
    if (quitAt_ != RealClock::time_point{}) return;
    fillDisk(false);
    card->fail({});
    quitAt_ = RealClock::now();
    SDL_Event event{};
    event.type = SDL_QUIT;
    SDL_PushEvent(&event);
  }

  const std::thread::id main_ = std::this_thread::get_id();
  test::TurnedClock clock_;
  std::mt19937_64 random_;
  long left_;
  const std::filesystem::path root_;
  const std::filesystem::path stateFile_;
  SDL_Keycode held_ = 0;
  Time backAt_{};
  std::filesystem::path away_;
  bool full_ = false;
  bool garbled_ = false;
  bool guestAdded_ = false;
  std::chrono::duration<double> longestPass_{};
  std::chrono::duration<double> longestSleep_{};
  RealClock::time_point passAt_{};
  RealClock::time_point quitAt_{};
};

}  // namespace tavek::test

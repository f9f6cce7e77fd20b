// simulate <keys> <seed>: the whole run of a library with made-up media, on a clock that takes no time, under
// random keys and faults. Fails if a pass freezes, the end takes long, the player and the screen are not in
// step with the item's state, or the stored state is not whole.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>

#include <SDL.h>

#include "app/library_run.h"
#include "base/paths.h"
#include "display/display.h"
#include "lights/hue_lights.h"
#include "simulate/made_library.h"
#include "simulate/restless_viewer.h"
#include "simulate/stored_text.h"
#include "state/state_store.h"
#include "support/fake_device.h"
#include "support/temp_folder.h"
#include "viewing/item_loop.h"

extern "C" {
#include <libavutil/log.h>
}

namespace {

namespace fs = std::filesystem;
using namespace tavek;
using Seconds = std::chrono::duration<double>;

/// What has to hold, and has held so far.
class Findings {
 public:
  void expect(bool holds, const std::string& complaint) {
    if (!holds) std::printf("%s\n", complaint.c_str());
    good_ = good_ && holds;
  }
  bool good() const { return good_; }

 private:
  bool good_ = true;
};

void checkStored(const test::RestlessViewer& viewer, Findings& findings) {
  const std::string when = ", keys left: " + std::to_string(viewer.keysLeft());
  const auto stored = test::readStored(stateFile());
  findings.expect(stored.has_value(), "the stored state is not whole" + when);
  if (!stored) return;
  findings.expect(test::positionsAreWithin(*stored, test::longestUs), "a position is beyond its film" + when);
  findings.expect(!viewer.guestIsKnown() || (*stored)["users"].contains("Guest"),
                  "what another instance stored is lost" + when);
}

void simulate(long count, std::uint64_t seed, const fs::path& root, Findings& findings) {
  test::RestlessViewer viewer(count, seed, root, stateFile());
  test::FakeSound card(viewer);
  viewer.card = &card;
  StateStore state(stateFile());
  state.flush();
  viewer.check = [&] {
    // On a full disk there may be no file yet.
    if (!viewer.stateIsGarbled() && fs::exists(stateFile())) checkStored(viewer, findings);
  };
  const Stored stored = state.parts();
  viewer.editsUsers = [&] { return stored.settings.settingsTab() == "users"; };
  Seconds ending{};
  {
    Display display(0, 0, 160, 90, Orientation::OrientationAuto, stored, viewer);
    HueLights lights(stored.devices);
    const PlayContext context{.display = display,
                              .stored = stored,
                              .clock = viewer,
                              .language = {},
                              .soundDevice = card.factory(),
                              .lights = lights};
    display.goHome(true);
    runLibrary(context);
    state.flush();
    ending = test::RestlessViewer::RealClock::now() - viewer.quitAt();
  }
  std::printf("sound opened %d times, longest pass %.3f s, longest sleep %.3f s, end %.3f s\n",
              card.timesOpened(), viewer.longestPass().count(), viewer.longestSleep().count(),
              ending.count());
  // No pass takes real time; the margin is for a busy machine.
  findings.expect(viewer.longestPass() < Seconds(1), "a pass froze");
  findings.expect(viewer.longestSleep() < Seconds(0.26), "keys wait for a sleep");
  findings.expect(ending < Seconds(1), "the end took long");
  checkStored(viewer, findings);
  findings.expect(fs::file_size(stateFile()) > 100, "hardly anything was stored");
  findings.expect(card.end(), "a thread hangs");
  findings.expect(waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD, "a tool still runs");
  findings.expect(card.timesOpened() > count / 1000, "hardly anything was played");
}

}  // namespace

int main(int count, char** words) {
  if (count != 3) return std::fputs("usage: simulate <keys> <seed>\n", stderr), 2;
  const test::TempFolder folder;
  const test::TempFolder tools;
  test::makeLibrary(folder.path());
  test::makeSlowTool(tools.path());
  setenv("TAVEK_MEDIA_ROOT", folder.path().c_str(), 1);
  setenv("TAVEK_HOME", tools.path().c_str(), 1);
  setenv("TAVEK_TOOL_DIR", tools.path().c_str(), 1);
  setenv("SDL_VIDEODRIVER", "dummy", 1);
  setenv("SDL_RENDER_DRIVER", "software", 1);
  std::signal(SIGXFSZ, SIG_IGN);
  av_log_set_level(AV_LOG_QUIET);
  // What the program tells of broken items is not of interest here.
  std::freopen("/dev/null", "w", stderr);
  std::printf("seed %s\n", words[2]);
  std::fflush(stdout);
  Findings findings;
  simulate(std::stol(words[1]), std::stoull(words[2]), folder.path(), findings);
  std::printf("seed %s: %s\n", words[2], findings.good() ? "all held" : "failed");
  return findings.good() ? 0 : 1;
}

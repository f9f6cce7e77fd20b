#include "app/program.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include <SDL.h>

#include "app/last_resort.h"
#include "app/library_run.h"
#include "app/named_run.h"
#include "app/options.h"
#include "base/background_job.h"
#include "base/clock.h"
#include "base/console.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "lights/hue_lights.h"
#include "scan/scan_thread.h"
#include "sound/alsa_device.h"
#include "state/state_store.h"
#include "viewing/item_loop.h"

extern "C" {
#include <libavutil/log.h>
}

namespace tavek {
namespace {

void onSignal(int) {
  stopSignalled = true;
  quitRequested = true;
}

void catchSignals() {
  struct sigaction action {};
  action.sa_handler = onSignal;
  sigemptyset(&action.sa_mask);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) sigaction(number, &action, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
}

void forceDriver(const std::string& name) {
  if (SDL_setenv("SDL_VIDEODRIVER", name.c_str(), 1) == 0) {
    std::cout << "Forcing video driver: " << console::boldGreen << name << console::reset << std::endl;
  } else {
    std::cerr << "Warning: failed to set SDL_VIDEODRIVER to " << name << std::endl;
  }
}

/// What is kept of the sound mode wins over the command line.
void loadState(StateStore& state, LaunchOptions& options) {
  const Stored stored = state.parts();
  if (const auto mode = stored.settings.soundMode()) options.soundMode = static_cast<SoundMode>(*mode);
}

/// With nothing to play and no screen to choose on, the service manager has to start the program again.
int play(const LaunchOptions& options, StateStore& state) {
  const Stored stored = state.parts();
  Display display(0, 0, 1920, 1080, options.orientation, stored, steadyClock());
  ScanThread scans(stored, {options.forceTmdbScan, options.forceFanartScan});
  display.setScanRequests({[&](const auto& room) { scans.tmdbScanRequest(room); },
                           [&](const auto& room) { scans.tvArtScanRequest(room); }});
  HueLights lights(stored.devices);
  display.setUserChosen([&] { lights.hueTriggerPlay(); });
  display.setDisplaySoundMode(options.soundMode);
  const PlayContext context{.display = display,
                            .stored = stored,
                            .clock = steadyClock(),
                            .language = options.language,
                            .soundDevice = display.soundThemes(alsaDeviceFactory()),
                            .lights = lights,
                            .itemInUse = [&](const auto& item) { scans.setItemInUse(item); }};
  display.goHome(true);
  scans.startUp(display.currentFolder());
  if (options.videoPaths.empty()) display.showScanScreen();
  int status = EXIT_SUCCESS;
  if (!options.videoPaths.empty()) {
    playNamedFiles(context, options);
  } else if (display.usable()) {
    runLibrary(context);
  } else {
    std::cerr << "tavek has no screen to show its library on." << std::endl;
    status = EXIT_FAILURE;
  }
  // While the screen still stands: a slow disk must not be met by a television that has gone dark.
  state.flush();
  return status;
}

/// What hangs in a dead disk can't be joined, and must not be torn down under its feet.
int afterThreads(int status) {
  if (!joinLeftThreads(std::chrono::milliseconds(700))) std::_Exit(status);
  return status;
}

int runStored(LaunchOptions& options) {
  StateStore state(stateFile());
  const LastResort lastResort(state);
  loadState(state, options);
  // What was left has a hold on the state: a scan in mid-transfer ends soon.
  return afterThreads(play(options, state));
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
  catchSignals();
  av_log_set_level(AV_LOG_ERROR);
  ParsedLine line = readCommandLine(argc, argv);
  if (line.exitStatus) return *line.exitStatus;
  if (line.options.undoRoom) return afterThreads(undoRenamesOf(*line.options.undoRoom));
  if (line.options.videoDriver) forceDriver(*line.options.videoDriver);
  if (stopSignalled) return EXIT_SUCCESS;
  // A debug start forgets the shared state, so its file goes before it is read.
  std::error_code ignored;
  if (debugEnabled) std::filesystem::remove(stateFile(), ignored);
  tmdbConsoleEnabled = fanartConsoleEnabled = debugEnabled;

  return runStored(line.options);
}

}  // namespace tavek

#include "app/program.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <system_error>

#include <SDL.h>
#include <curl/curl.h>

#include "app/library_run.h"
#include "app/named_run.h"
#include "app/options.h"
#include "base/background_job.h"
#include "base/console.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "library/media_paths.h"
#include "state/state_store.h"

extern "C" {
#include <libavutil/log.h>
}

namespace tavek {
namespace {

void onSignal(int) {
  stopSignalled = true;
  quitRequested = true;
}

void prepareLibraries() {
  if (curl_global_init(CURL_GLOBAL_ALL) == CURLE_OK) {
    std::atexit(curl_global_cleanup);
  } else {
    std::cerr << "Warning: curl_global_init failed" << std::endl;
  }
  av_log_set_level(AV_LOG_ERROR);
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

/// A debug start forgets the shared state, so its file goes before it is read.
void forgetState() {
  std::error_code ignored;
  std::filesystem::remove(stateFile(), ignored);
}

/// What is kept of the sound mode wins over the command line.
void useState(const Stored& stored, LaunchOptions& options) {
  stored.users.ensureRooms(listRoots());
  if (const auto mode = stored.settings.soundMode()) options.soundMode = static_cast<SoundMode>(*mode);
}

/// With nothing to play and no screen to choose on, the service manager has to start the program again.
int play(Display& display, const Stored& stored, const LaunchOptions& options) {
  display.goHome(true);
  if (!options.videoPaths.empty()) {
    playNamedFiles(display, stored, options);
  } else if (display.usable()) {
    runLibrary(display, stored, options);
  } else {
    std::cerr << "tavek has no screen to show its library on." << std::endl;
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

int runStored(LaunchOptions& options) {
  if (debugEnabled) forgetState();
  StateStore store(stateFile());
  const Stored stored = store.parts();
  useState(stored, options);
  Display display(0, 0, 1920, 1080, options.orientation, stored);
  const int status = play(display, stored, options);
  // Before the display goes, which takes its time.
  store.flush();
  return status;
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
  catchSignals();
  prepareLibraries();
  ParsedLine line = readCommandLine(argc, argv);
  if (line.exitStatus) return *line.exitStatus;
  if (line.options.videoDriver) forceDriver(*line.options.videoDriver);
  if (stopSignalled) return EXIT_SUCCESS;
  tmdbConsoleEnabled = fanartConsoleEnabled = debugEnabled;
  const int status = runStored(line.options);
  // A thread that a dead disk holds is left behind.
  if (!joinLeftThreads(std::chrono::milliseconds(300))) std::_Exit(status);
  return status;
}

}  // namespace tavek

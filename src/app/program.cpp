#include "app/program.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>

#include <SDL.h>
#include <curl/curl.h>

#include "app/named_run.h"
#include "app/options.h"
#include "base/console.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "display/display.h"

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

/// A debug start forgets the shared state; any other start finds a file for it.
void prepareStateFile() {
  std::error_code ignored;
  if (debugEnabled) {
    std::filesystem::remove(stateFile(), ignored);
  } else if (!std::filesystem::exists(stateFile(), ignored)) {
    std::ofstream(stateFile()) << "{}";
  }
}

/// With nothing to play and no screen to choose on, the service manager has to start the program again.
int play(const LaunchOptions& options) {
  Display display(0, 0, 1920, 1080, options.orientation);
  display.goHome();
  if (!options.videoPaths.empty()) {
    playNamedFiles(display, options);
  } else if (!display.usable()) {
    std::cerr << "tavek has no screen to show its library on." << std::endl;
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
  prepareLibraries();
  catchSignals();
  const ParsedLine line = readCommandLine(argc, argv);
  if (line.exitStatus) return *line.exitStatus;
  if (line.options.videoDriver) forceDriver(*line.options.videoDriver);
  if (stopSignalled) return EXIT_SUCCESS;
  prepareStateFile();
  tmdbConsoleEnabled = fanartConsoleEnabled = debugEnabled;
  return play(line.options);
}

}  // namespace tavek

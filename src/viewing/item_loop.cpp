#include "viewing/item_loop.h"

#include <utility>

#include "base/process_flags.h"
#include "display/display.h"
#include "media/error.h"
#include "player/playback_timer.h"
#include "viewing/play.h"
#include "viewing/selected_item.h"

namespace tavek {
namespace {

constexpr std::int64_t passMs = 16;

/// The viewer's next choice after one from the strip that did not play. None leaves the run of items.
std::optional<std::string> chooseAnother(Display& display, const std::string& path,
                                         const ffmpeg::Error& error) {
  display.showError("Failed to open: " + path + " (" + error.what() + ")");
  // The selection stays on the choice that failed.
  display.alignWithItem(path);
  display.showStrip();
  while (!quitRequested && !stopSignalled) {
    const NavCode code = display.pollInput();
    if (code == NavCode::Quit) quitRequested = true;
    if (code == NavCode::Quit || code == NavCode::ClosePosters || code == NavCode::GoHome) return {};
    if (code == NavCode::PlaySelection) {
      if (auto item = selectedItem(display, Console::Silent)) {
        display.clearError();
        return item->string();
      }
    }
    display.presentBlank();
    sleepMilliseconds(passMs);
  }
  return {};
}

}  // namespace

SoundMode playFromPath(const PlayContext& context, std::string path, SoundMode soundMode) {
  bool dismissed = false;
  while (!quitRequested && !path.empty()) {
    if (stopSignalled) {
      quitRequested = true;
      break;
    }
    try {
      ItemPlay play(context.display, path, context.language, soundMode, context.stored);
      play.run();
      if (quitRequested || !play.nextPath()) break;
      path = play.nextPath()->string();
      if (context.display != nullptr) dismissed = context.display->takeErrorDismissed();
    } catch (const ffmpeg::Error& error) {
      // Only a choice from the strip leads back to it.
      if (context.display == nullptr || !dismissed) throw;
      path = chooseAnother(*context.display, path, error).value_or("");
    }
  }
  return soundMode;
}

}  // namespace tavek

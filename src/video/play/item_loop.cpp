#include "video/play/item_loop.h"

#include "base/process_flags.h"
#include "video/play/play.h"

namespace tavek {

SoundMode playFromPath(const PlayContext& context, std::string path, SoundMode soundMode) {
  while (!quitRequested && !path.empty()) {
    if (stopSignalled) {
      quitRequested = true;
      break;
    }
    Play play(context.display, path, context.language, soundMode);
    play.run();
    if (quitRequested || !play.nextPath()) break;
    path = play.nextPath()->string();
  }
  return soundMode;
}

}  // namespace tavek

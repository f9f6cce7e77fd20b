#include "app/named_run.h"

#include "app/failed_item.h"
#include "app/options.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "viewing/item_loop.h"

namespace tavek {

void playNamedFiles(Display& display, const Stored& stored, const LaunchOptions& options) {
  const PlayContext context{.display = &display, .stored = stored, .language = options.language};
  SoundMode soundMode = options.soundMode;
  display.leaveHome();
  for (const std::string& path : options.videoPaths) {
    if (stopSignalled) quitRequested = true;
    if (quitRequested) return;
    if (path.empty()) continue;
    try {
      soundMode = playFromPath(context, path, soundMode);
    } catch (const ffmpeg::Error& error) {
      tellFailed(path, error);
    }
  }
}

}  // namespace tavek

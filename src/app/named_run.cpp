#include "app/named_run.h"

#include "app/failed_item.h"
#include "app/options.h"
#include "base/process_flags.h"
#include "display/display.h"
#include "lights/hue_lights.h"
#include "viewing/item_loop.h"

namespace tavek {

void playNamedFiles(const PlayContext& context, const LaunchOptions& options) {
  context.display.leaveHome();
  for (const std::string& path : options.videoPaths) {
    if (stopSignalled) quitRequested = true;
    if (quitRequested) return;
    if (path.empty()) continue;
    try {
      playFromPath(context, path);
    } catch (const std::exception& error) {
      tellFailed(path, error);
    }
  }
  if (!quitRequested) context.lights.hueTriggerPause();
}

}  // namespace tavek

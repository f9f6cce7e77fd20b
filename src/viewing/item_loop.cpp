#include "viewing/item_loop.h"

#include <exception>
#include <utility>

#include "base/process_flags.h"
#include "display/display.h"
#include "viewing/await.h"
#include "viewing/selection.h"
#include "viewing/viewing.h"

namespace tavek {
namespace {

constexpr std::chrono::milliseconds passTime{16};

/// Tells whoever might touch the file that it plays.
class InUse {
 public:
  InUse(const PlayContext& context, const std::string& path) : tell_(context.itemInUse) {
    if (tell_) tell_(path);
  }
  ~InUse() {
    if (tell_) tell_({});
  }
  InUse(const InUse&) = delete;
  InUse& operator=(const InUse&) = delete;

 private:
  const std::function<void(const std::filesystem::path&)>& tell_;
};

/// The viewer's next choice after one from the strip that did not play. None leaves the run of items.
std::optional<std::string> chooseAnother(const PlayContext& context, const std::string& path,
                                         const std::exception& error) {
  Display& display = context.display;
  display.showError("Failed to open: " + path + " (" + error.what() + ")");
  // The selection stays on the choice that failed.
  display.alignWithItem(path);
  display.showStrip(true);
  Selection selection(Selection::Loading::ErrorLine);
  while (!quitRequested && !stopSignalled) {
    const NavCode code = display.pollInput();
    if (code == NavCode::Quit) quitRequested = true;
    if (code == NavCode::Quit || code == NavCode::ClosePosters || code == NavCode::GoHome) return {};
    if (code == NavCode::PlaySelection) selection.ask(display);
    if (auto item = selection.poll(display)) {
      display.clearError();
      return item->string();
    }
    display.presentBlank();
    context.clock.sleepFor(passTime);
  }
  return {};
}

}  // namespace

void playFromPath(const PlayContext& context, std::string path) {
  bool dismissed = false;
  std::optional<std::int64_t> resumeUs;
  while (!quitRequested && !path.empty()) {
    if (stopSignalled) {
      quitRequested = true;
      break;
    }
    try {
      const InUse inUse(context, path);
      Viewing viewing(context, path, std::exchange(resumeUs, {}));
      viewing.run();
      if (viewing.soundModeChanged()) {
        resumeUs = viewing.resumeUs();
        dismissed = false;
        continue;
      }
      if (quitRequested || !viewing.nextPath()) break;
      path = viewing.nextPath()->string();
      dismissed = context.display.takeErrorDismissed();
    } catch (const std::exception& error) {
      // Only a choice from the strip leads back to it.
      if (!dismissed) throw;
      path = chooseAnother(context, path, error).value_or("");
    }
  }
}

}  // namespace tavek

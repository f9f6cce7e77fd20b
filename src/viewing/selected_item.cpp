#include "viewing/selected_item.h"

#include <iostream>
#include <string>

#include "display/display.h"
#include "library/file_types.h"
#include "library/video_match.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// What becomes of a choice: a file, or words for the viewer, or neither.
struct Outcome {
  std::string consoleLine;
  std::string errorLine;
  std::optional<fs::path> item;
};

bool isFile(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

Outcome resolve(const Poster& poster, const Display& display) {
  const fs::path candidate = poster.media.empty() ? poster.path : fs::path(poster.media);
  const std::string folder = candidate.parent_path().string();
  std::error_code ignored;
  if (!fs::is_directory(folder, ignored))
    return {"poster folder missing: " + folder, "Poster folder missing: " + folder, {}};
  if (isVideoFile(candidate) || isAudioFile(candidate)) {
    if (isFile(candidate)) return {"selected media=" + candidate.string(), "", candidate};
    return {
        "selected media missing: " + candidate.string(), "Selected media missing: " + candidate.string(), {}};
  }
  // A tile of a series stands for a folder to enter.
  if (display.roomKind() == MediaKind::Music || display.roomKind() == MediaKind::Series) return {};
  const auto match = findVideoForPoster(poster.path, display.currentFolder());
  if (!match)
    return {"no video match for poster=" + poster.path.string(),
            "No match for poster: " + poster.path.string(),
            {}};
  if (!isFile(*match))
    return {"matched video missing: " + match->string(), "Matched media missing: " + match->string(), {}};
  return {"selected poster=" + poster.path.string() + " playing video=" + match->string(), "", match};
}

}  // namespace

std::optional<fs::path> selectedItem(Display& display, Console console) {
  if (!display.posters().postersReady()) {
    if (console == Console::Told)
      display.showStatus("Loading posters...");
    else
      display.showError("Loading posters...");
    return {};
  }
  const Poster* poster = display.selectedPoster();
  if (poster == nullptr) return {};
  const Outcome outcome = resolve(*poster, display);
  if (console == Console::Told && !outcome.consoleLine.empty()) {
    std::cerr << "[PLAY] " << outcome.consoleLine << std::endl;
  }
  if (!outcome.errorLine.empty()) display.showError(outcome.errorLine);
  return outcome.item;
}

}  // namespace tavek

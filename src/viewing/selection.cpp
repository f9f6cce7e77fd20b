#include "viewing/selection.h"

#include <iostream>
#include <system_error>

#include "display/display.h"
#include "library/file_types.h"
#include "library/film_candidates.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// What the answer depends on, taken at the key.
struct Question {
  fs::path poster;
  fs::path media;                ///< empty if unknown
  fs::path folder;               ///< the room
  bool tilesAreFolders = false;  ///< a tile without a file stands for something to enter
};

bool isFile(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

SelectionOutcome answer(const Question& question, const Flag& stop) {
  const fs::path& candidate = question.media.empty() ? question.poster : question.media;
  const std::string folder = candidate.parent_path().string();
  std::error_code ignored;
  if (!fs::is_directory(folder, ignored))
    return {"poster folder missing: " + folder, "Poster folder missing: " + folder, {}};
  if (isVideoFile(candidate) || isAudioFile(candidate)) {
    if (isFile(candidate)) return {"selected media=" + candidate.string(), "", candidate};
    return {
        "selected media missing: " + candidate.string(), "Selected media missing: " + candidate.string(), {}};
  }
  if (question.tilesAreFolders) return {};
  const std::string poster = question.poster.string();
  const auto match = findVideoForPoster(question.poster, question.folder, stop);
  if (!match) return {"no video match for poster=" + poster, "No match for poster: " + poster, {}};
  if (!isFile(*match))
    return {"matched video missing: " + match->string(), "Matched media missing: " + match->string(), {}};
  return {"selected poster=" + poster + " playing video=" + match->string(), "", match};
}

}  // namespace

void Selection::ask(Display& display) {
  if (!display.posters().postersReady()) {
    if (loading_ == Loading::StatusLine) return display.showStatus("Loading posters...");
    return display.showError("Loading posters...");
  }
  const Poster* poster = display.selectedPoster();
  if (poster == nullptr) return;
  const MediaKind kind = display.roomKind();
  job_.start([question = Question{poster->path, poster->media, display.currentFolder(),
                                  kind == MediaKind::Music || kind == MediaKind::Series}](
                 JobSide<SelectionOutcome>& side) { side.post(answer(question, side.stop())); });
}

std::optional<fs::path> Selection::poll(Display& display) {
  const auto outcome = job_.take();
  if (!outcome) return {};
  if (loading_ == Loading::StatusLine && !outcome->consoleLine.empty()) {
    std::cerr << "[PLAY] " << outcome->consoleLine << std::endl;
  }
  if (!outcome->errorLine.empty()) display.showError(outcome->errorLine);
  return outcome->item;
}

}  // namespace tavek

// What is kept of an item for its next start.
#include <iostream>

#include "display/display.h"
#include "library/file_types.h"
#include "library/video_match.h"
#include "viewing/item_rules.h"
#include "viewing/play.h"

namespace tavek {
namespace {

/// Everything is kept for the active user.
constexpr const char* user = "";

}  // namespace

void ItemPlay::startAtStored() {
  const ResumeStep resume =
      resumeStep(isAvi_, stored_.users.resumePosition(path_), pipeline_.demultiplexer().durationUs());
  if (resume.dropStored) stored_.users.setPosition(path_, 0, user);
  if (!resume.seekUs) return;
  if (pipeline_.seekDebug()) {
    std::cout << "[RESUME] seek request=" << *resume.seekUs << "us path=" << path_ << std::endl;
  }
  pipeline_.requestSeek(*resume.seekUs);
  // An item that is left before its first picture came keeps its place.
  pacing_.lastPositionUs = *resume.seekUs;
}

void ItemPlay::storeBoundary() {
  if (stored_.playback.playbackBoundary(path_).value_or(0) >= 1) return;
  const double rate = pipeline_.demultiplexer().movieInfo().videoFramesPerSecond;
  stored_.playback.setPlaybackBoundary(path_, boundaryForRate(rate));
}

void ItemPlay::storePosition() {
  stored_.users.setPosition(path_, savedPosition(), user);
}

void ItemPlay::storeEnd() {
  stored_.users.setPlaying(path_, user);
  const std::int64_t duration = pipeline_.demultiplexer().durationUs();
  if (const auto position = endPositionUs(isAvi_, savedPosition(), duration)) {
    stored_.users.setPosition(path_, *position, user);
  }
  if (!watched()) return;
  stored_.users.markWatched(path_, true, user);
  if (display_ != nullptr) display_->refreshWatchedBits();
}

/// On the strip the pause key switches the mark of the selected episode. False where there is none to switch.
bool ItemPlay::toggleWatched() {
  const Poster* poster = display_ != nullptr ? display_->watchedToggleTarget() : nullptr;
  if (poster == nullptr) return false;
  std::filesystem::path media = poster->media.empty() ? poster->path : std::filesystem::path(poster->media);
  if (!isVideoFile(media)) media = findVideoForPoster(media, display_->posters().openFolder()).value_or("");
  if (isVideoFile(media)) {
    stored_.users.markWatched(media.string(), !stored_.users.isWatched(media.string()), user);
    display_->refreshWatchedBits();
  }
  return true;
}

std::int64_t ItemPlay::savedPosition() {
  return savedPositionUs(pacing_.lastPositionUs, pipeline_.audioClock().heardUs(Clock::now()));
}

bool ItemPlay::watched() const {
  return countsAsWatched(pacing_.lastPositionUs, pipeline_.demultiplexer().durationUs());
}

}  // namespace tavek

// What the codes of the input do to the playing item.
#include <algorithm>
#include <utility>

#include "display/display.h"
#include "library/media_paths.h"
#include "player/seek_rules.h"
#include "viewing/play.h"
#include "viewing/selected_item.h"
#include "viewing/snapshot.h"
#include "viewing/volume_percent.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;

std::int64_t wholeMilliseconds(std::chrono::steady_clock::duration span) {
  return std::chrono::duration_cast<milliseconds>(span).count();
}

}  // namespace

constexpr ItemPlay::Command ItemPlay::commands[] = {
    {NavCode::TogglePause, &ItemPlay::togglePause, true},
    {NavCode::SeekForward, &ItemPlay::seekForward, true},
    {NavCode::SeekBackward, &ItemPlay::seekBackward, true},
    {NavCode::SeekCommit, &ItemPlay::seekCommit, true},
    {NavCode::OpenPosters, &ItemPlay::openPosters, false},
    {NavCode::ClosePosters, &ItemPlay::closePosters, false},
    {NavCode::PlaySelection, &ItemPlay::playSelection, false},
    {NavCode::Quit, &ItemPlay::stopItem, false},
    {NavCode::GoHome, &ItemPlay::goHome, false},
    {NavCode::PreviousItem, &ItemPlay::previousItem, false},
    {NavCode::NextItem, &ItemPlay::stopItem, false},
    {NavCode::VolumeUpPress, &ItemPlay::volumeUp, true},
    {NavCode::VolumeUpRelease, &ItemPlay::releaseVolume, true},
    {NavCode::VolumeDownPress, &ItemPlay::volumeDown, true},
    {NavCode::VolumeDownRelease, &ItemPlay::releaseVolume, true},
    {NavCode::Snapshot, &ItemPlay::snapshot, false},
    {NavCode::Wake, &ItemPlay::wake, false},
};

void ItemPlay::dispatch(NavCode code) {
  if (ending()) return;
  const bool userPause = paused() && !pipeline_.pausedForPosters && !seek_.active;
  const auto* command = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const Command& c) { return c.code == code; });
  if (command == std::end(commands) || (userPause && !command->inPause)) return;
  (this->*command->serve)();
}

void ItemPlay::togglePause() {
  if (toggleWatched()) return;
  seek_.pausedBefore = false;
  if (paused()) {
    unpause();
  } else {
    pause();
  }
  storePosition();
}

/// setVideoPlaying(false) ends the user's pause too, so it goes first.
void ItemPlay::pause() {
  pipeline_.paused = true;
  if (display_ == nullptr) return;
  display_->setVideoPlaying(false);
  display_->setVideoPaused(true);
  display_->showSeekBar();
}

/// Ends a pause of either kind: the workers stand still in both.
void ItemPlay::unpause() {
  pipeline_.paused = false;
  pipeline_.pausedForPosters = false;
  postersOpen_ = false;
  pacing_.resetClock = true;
  pacing_.frameIntervalUs = 0;
  timer_.reset();
  pipeline_.audioClock().set(pacing_.lastPositionUs);
  if (std::exchange(audioClosedForBrowser_, false) && pipeline_.audioOutput() != nullptr) {
    pipeline_.audioOutput()->reopen();
  }
  if (display_ == nullptr) return;
  display_->setVideoPlaying(true);
  display_->setVideoPaused(false);
  display_->showSeekBar();
}

void ItemPlay::openPosters() {
  if (display_ == nullptr) return;
  if (postersOpen_ && display_->stripShown()) return closePosters();
  display_->openRoomOf(path_);
  display_->alignWithItem(path_);
  postersOpen_ = true;
  if (!paused()) {
    pipeline_.paused = true;
    pipeline_.pausedForPosters = true;
    AudioOutput* output = pipeline_.audioOutput();
    if (output != nullptr && seriesRootOf(path_)) {
      output->close();
      audioClosedForBrowser_ = true;
    }
    display_->setVideoPlaying(false);
  }
  display_->showStrip();
  storePosition();
}

void ItemPlay::closePosters() {
  postersOpen_ = false;
  if (display_ != nullptr) display_->hideStrip();
  if (pipeline_.pausedForPosters) unpause();
}

void ItemPlay::playSelection() {
  if (display_ == nullptr) return;
  nextPath_ = selectedItem(*display_, Console::Told);
  if (!nextPath_) return;
  pipeline_.paused = false;
  pipeline_.pausedForPosters = false;
  display_->clearError();
  display_->dismissError();
  stopItem();
}

void ItemPlay::requestSeek(std::int64_t positionUs) {
  pipeline_.requestSeek(positionUs);
  timer_.reset();
  pacing_.frameIntervalUs = 0;
  pacing_.lastPositionUs = positionUs;
  pacing_.firstFrame = true;
}

void ItemPlay::keySeek(int direction) {
  // In a music room these keys step the track; without an album there is none to step to.
  if (musicRoom_) return;
  const Clock::time_point now = Clock::now();
  if (paused()) seek_.pausedBefore = true;
  if (!seek_.active) {
    seek_.startedAt = now;
  } else if (now - seek_.lastAt < milliseconds(seekRepeatGateMs)) {
    return;
  }
  const std::int64_t step = seekStepUs(wholeMilliseconds(now - seek_.startedAt));
  const std::int64_t duration = pipeline_.demultiplexer().durationUs();
  requestSeek(wrapPosition(pacing_.lastPositionUs + direction * step, duration));
  seek_.lastAt = now;
  seek_.active = true;
  if (paused() && display_ != nullptr) {
    display_->showSeekBar();
    show();
  }
}

void ItemPlay::seekCommit() {
  if (display_ != nullptr) display_->showSeekBar();
  seek_.active = false;
  if (seek_.pausedBefore) {
    // Playing for a moment lets a picture of the new position come through.
    seek_.pausedBefore = false;
    seek_.repauseAt = Clock::now() + milliseconds(50);
    unpause();
  } else if (paused()) {
    show();
    if (display_ != nullptr) display_->setVideoPaused(true);
  }
}

void ItemPlay::repauseWhenDue() {
  if (ending() || !seek_.repauseAt || Clock::now() < *seek_.repauseAt) return;
  seek_.repauseAt.reset();
  pause();
}

void ItemPlay::goHome() {
  storePosition();
  exitAt_ = Clock::now();
  // The pause also makes the audio thread empty the device.
  pipeline_.paused = true;
  if (display_ == nullptr) return;
  display_->setVideoPlaying(false);
  display_->startVideoFadeOut();
}

void ItemPlay::previousItem() {
  if (pacing_.lastPositionUs <= 500'000) return stopItem();
  requestSeek(0);
  if (display_ != nullptr) display_->showSeekBar();
}

void ItemPlay::pressVolume(VolumeKey key) {
  heldVolumeKey_ = key;
  volumeStep(true);
}

void ItemPlay::releaseVolume() {
  heldVolumeKey_ = VolumeKey::None;
  if (const AudioOutput* output = pipeline_.audioOutput()) output->storeVolume();
}

void ItemPlay::volumeHoldStep(bool showBar) {
  if (heldVolumeKey_ != VolumeKey::None && Clock::now() - lastVolumeStepAt_ >= milliseconds(150)) {
    volumeStep(showBar);
  }
}

void ItemPlay::volumeStep(bool showBar) {
  if (AudioOutput* output = pipeline_.audioOutput()) {
    output->adjustVolume(heldVolumeKey_ == VolumeKey::Up ? 1.0 : -1.0);
    if (showBar) showVolumeBar();
  }
  lastVolumeStepAt_ = Clock::now();
}

void ItemPlay::showVolumeBar() {
  const AudioOutput* output = pipeline_.audioOutput();
  if (display_ == nullptr || output == nullptr) return;
  const double ceiling = output->volumeCeilingDb();
  const double volume = output->volumeDb();
  display_->showVolume(volumePercent(volume, ceiling), volume, -60.0, std::max(ceiling, -60.0));
}

void ItemPlay::snapshot() {
  if (paused() && lastFrame_) saveSnapshot(*lastFrame_);
}

void ItemPlay::wake() {
  if (display_ != nullptr) display_->showSeekBar();
}

}  // namespace tavek

#include "viewing/play.h"

#include <exception>
#include <iostream>

#include "base/paths.h"
#include "base/process_flags.h"
#include "base/text.h"
#include "display/display.h"
#include "library/file_types.h"
#include "library/next_item.h"
#include "player/movie_text.h"
#include "player/seek_rules.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;

/// A key that started the item must not pause it.
constexpr milliseconds startGuard{1000};

std::string fullPath(const std::string& path) {
  const std::filesystem::path given(path);
  return (given.is_absolute() ? given : mediaRoot() / given).lexically_normal().string();
}

double sampleAspectOf(const AVFrame& frame) {
  const AVRational aspect = frame.sample_aspect_ratio;
  return aspect.num > 0 && aspect.den > 0 ? static_cast<double>(aspect.num) / aspect.den : 1.0;
}

}  // namespace

ItemPlay::ItemPlay(Display* display, const std::string& path, std::optional<std::string> language,
                   SoundMode soundMode, const Stored& stored)
    : display_(display),
      stored_(stored),
      path_(fullPath(path)),
      isAvi_(lowerExtension(path_) == ".avi"),
      pipeline_(path_, std::move(language), soundMode, stored) {
  if (debugEnabled) {
    std::cout << "[play] now playing: " << path_ << (pipeline_.audioOnly() ? " (audio)" : " (video)")
              << std::endl;
  }
  const MovieInfo info = pipeline_.demultiplexer().movieInfo();
  stored_.notes.setFrameSize(path_, info.videoWidth, info.videoHeight);
  if (movieDetailEnabled) std::cout << movieText(path_, info) << std::flush;
  if (display_ != nullptr) {
    display_->setDuration(pipeline_.demultiplexer().durationUs());
    display_->alignWithItem(path_);
  }
  if (isAvi_) storeBoundary();
  startAtStored();
}

void ItemPlay::run() {
  begin();
  while (!ended_) pass();
  storeEnd();
  chooseNext();
  pipeline_.close();
  const std::exception_ptr error = pipeline_.join();
  if (error && !stopRequested_) std::rethrow_exception(error);
}

void ItemPlay::begin() {
  if (display_ != nullptr) {
    display_->leaveHome();
    display_->selectRoomForPath(path_);
    musicRoom_ = display_->roomKind() == MediaKind::Music;
  }
  pipeline_.start();
  lastVolumeStepAt_ = Clock::now();
  startGuardUntil_ = Clock::now() + startGuard;
  if (display_ != nullptr) {
    display_->setVideoPlaying(true);
    display_->setVideoPaused(false);
    display_->startVideoFadeIn();
  }
}

void ItemPlay::pass() {
  const NavCode code = nextCode();
  repauseWhenDue();
  dispatch(code);
  if (ended_) return;
  if (paused()) {
    pausedStep();
  } else {
    frameStep();
  }
}

NavCode ItemPlay::nextCode() {
  NavCode code = display_ != nullptr ? display_->pollInput() : NavCode::None;
  if (display_ != nullptr && display_->takePauseToggle()) code = NavCode::TogglePause;
  if (code == NavCode::TogglePause && Clock::now() < startGuardUntil_) code = NavCode::None;
  const bool released = Clock::now() - seek_.lastAt >= milliseconds(seekReleaseMs);
  return code == NavCode::None && seek_.active && released ? NavCode::SeekCommit : code;
}

void ItemPlay::frameStep() {
  if (quitRequested || stopSignalled) return stopItem();
  PicturePtr picture;
  if (!pipeline_.popPicture(picture)) return naturalEnd();
  take(std::move(picture));
  volumeHoldStep(true);
  waitForTurn(lastFrame_->pts);
  show();
  pacing_.firstFrame = false;
}

void ItemPlay::take(PicturePtr picture) {
  // Counted over all items: the screen still holds the last picture of the one before.
  static std::uint64_t taken = 0;
  lastFrame_ = std::move(picture);
  lastSerial_ = ++taken;
}

/// The picture is judged by the sound that will be heard when it is on the screen, not by that of the moment
/// at which its turn is worked out, which is a whole picture's time earlier.
void ItemPlay::waitForTurn(std::int64_t ptsUs) {
  const Clock::time_point now = Clock::now();
  const bool restarts = pacing_.firstFrame || pacing_.resetClock;
  const std::int64_t sleepUs = restarts ? 0 : timer_.expectedSleepUs(now, plainWaitUs(pacing_));
  const auto seenAt = now + std::chrono::microseconds(sleepUs + presentUs_);
  const PaceStep step = pace(pacing_, ptsUs, pipeline_.audioClock().heardUs(seenAt));
  if (step.resetTimer) timer_.reset();
  timer_.waitFor(step.waitUs);
}

void ItemPlay::show() {
  if (display_ == nullptr || !lastFrame_) return;
  const AVFrame& frame = *lastFrame_;
  const PictureView view{.planes = {frame.data[0], frame.data[1], frame.data[2]},
                         .pitches = {frame.linesize[0], frame.linesize[1], frame.linesize[2]},
                         .width = frame.width,
                         .height = frame.height,
                         .serial = lastSerial_,
                         .sampleAspect = sampleAspectOf(frame)};
  const Clock::time_point before = Clock::now();
  display_->presentFrame(view, pacing_.lastPositionUs);
  const auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - before).count();
  presentUs_ = presentUs_ == 0 ? took : (7 * presentUs_ + took) / 8;
}

void ItemPlay::pausedStep() {
  if (quitRequested || stopSignalled) return stopItem();
  if (ending() && Clock::now() - *exitAt_ >= milliseconds(500)) return stopItem();
  if (seek_.active) {
    PicturePtr picture;
    while (pipeline_.tryPopPicture(picture)) {
      take(std::move(picture));
      pacing_.lastPositionUs = lastFrame_->pts;
    }
  }
  show();
  volumeHoldStep(false);
  sleepMilliseconds(10);
}

void ItemPlay::stopItem() {
  stopRequested_ = true;
  pipeline_.paused = false;
  pipeline_.pausedForPosters = false;
  if (display_ != nullptr) display_->setVideoPaused(false);
  storePosition();
  pipeline_.close();
  ended_ = true;
}

void ItemPlay::naturalEnd() {
  if (display_ != nullptr) {
    display_->setVideoPlaying(false);
    display_->showSeekBar();
  }
  stopItem();
  stopRequested_ = false;
}

/// Music goes on by itself; a film does not.
void ItemPlay::chooseNext() {
  if (nextPath_ || path_.empty() || stopRequested_ || !isAudioFile(path_)) return;
  nextPath_ = nextItemAfter(path_);
  if (!nextPath_ && watched() && musicRoom_) nextPath_.emplace();
}

}  // namespace tavek

#include "viewing/viewing.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <exception>
#include <iostream>
#include <utility>

#include "base/console.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "base/text.h"
#include "display/display.h"
#include "library/album.h"
#include "library/file_types.h"
#include "library/media_paths.h"
#include "library/next_item.h"
#include "lights/hue_lights.h"
#include "media/colour.h"
#include "player/movie_text.h"
#include "player/seek_rules.h"
#include "state/stored.h"
#include "viewing/await.h"
#include "viewing/item_rules.h"
#include "viewing/snapshot.h"

namespace tavek {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds startGuard{1000};
constexpr milliseconds settleTime{50};
constexpr milliseconds fadeTime{500};
constexpr milliseconds standingPass{10};

struct CodeRequest {
  NavCode code;
  ItemRequest request;
};

constexpr std::array codeRequests{
    CodeRequest{NavCode::TogglePause, ItemRequest::TogglePause},
    CodeRequest{NavCode::SeekForward, ItemRequest::SeekForward},
    CodeRequest{NavCode::SeekBackward, ItemRequest::SeekBackward},
    CodeRequest{NavCode::SeekCommit, ItemRequest::SeekCommit},
    CodeRequest{NavCode::OpenPosters, ItemRequest::OpenPosters},
    CodeRequest{NavCode::ClosePosters, ItemRequest::ClosePosters},
    CodeRequest{NavCode::PlaySelection, ItemRequest::PlaySelection},
    CodeRequest{NavCode::Quit, ItemRequest::Leave},
    CodeRequest{NavCode::GoHome, ItemRequest::GoHome},
    CodeRequest{NavCode::PreviousItem, ItemRequest::PreviousItem},
    CodeRequest{NavCode::NextItem, ItemRequest::Leave},
};

/// Before the screen tells: a key may already ask for the next track while this one is being opened.
bool liesInMusicRoom(const std::filesystem::path& path) {
  const auto room = roomRootOf(path);
  return room && knownKind(*room) == MediaKind::Music;
}

std::string fullPath(const std::string& path) {
  const std::filesystem::path given(path);
  return (given.is_absolute() ? given : mediaRoot() / given).lexically_normal().string();
}

double sampleAspectOf(const AVFrame& frame) {
  const AVRational aspect = frame.sample_aspect_ratio;
  return aspect.num > 0 && aspect.den > 0 ? static_cast<double>(aspect.num) / aspect.den : 1.0;
}

PictureView viewOf(const AVFrame& frame, std::uint64_t serial) {
  return {.planes = {frame.data[0], frame.data[1], frame.data[2]},
          .pitches = {frame.linesize[0], frame.linesize[1], frame.linesize[2]},
          .width = frame.width,
          .height = frame.height,
          .serial = serial,
          .colours = screenColoursOf(frame).value_or(PictureColours::Bt709),
          .sampleAspect = sampleAspectOf(frame)};
}

std::int64_t wholeMilliseconds(Clock::Time::duration span) {
  return std::chrono::duration_cast<milliseconds>(span).count();
}

}  // namespace

Viewing::Viewing(const PlayContext& context, const std::string& path, std::optional<std::int64_t> resumeUs)
    : context_(context),
      display_(context.display),
      clock_(context.clock),
      path_(fullPath(path)),
      user_(context.stored.users.activeUser()),
      resumeUs_(resumeUs),
      isAvi_(lowerExtension(path_) == ".avi"),
      play_({path_, context.language, context.display.soundMode()},
            {context.clock, context.stored, context.soundDevice}),
      musicRoom_(liesInMusicRoom(path_)),
      startedAt_(clock_.now()),
      stateSince_(startedAt_) {}

void Viewing::run() {
  while (state_ != ItemState::Finished) pass();
  if (const std::exception_ptr error = ended_ ? play_.error() : nullptr) {
    context_.stored.users.dropPlaying(path_, user_);
    std::rethrow_exception(error);
  }
  if (!opened_) return;
  storeEnd();
  chooseNext();
}

void Viewing::pass() {
  const NavCode code = display_.pollInput();
  if (quitRequested || stopSignalled) return serve(ItemRequest::Leave);
  serveCode(code);
  // A page over the item asks for its pause by itself: no key, and beside one.
  if (display_.takePauseToggle()) serve(ItemRequest::TogglePause);
  serveTimes(code);
  serveSelection();
  serveNeighbour();
  repeatVolume();
  assert(inStep());
  if (state_ == ItemState::Finished) return;
  if (state_ == ItemState::Starting) return waitForFile();
  runs(state_) ? showTurn() : showStanding();
}

// --- Requests ---

void Viewing::serveCode(NavCode code) {
  // The key that has started the item must not pause it.
  if (code == NavCode::None || (code == NavCode::TogglePause && clock_.now() < startGuardUntil_)) return;
  if (code == NavCode::ToggleSettings && state_ != ItemState::Ending) {
    // A pause is settling already.
    return display_.toggleSettings(state_ == ItemState::Playing || state_ == ItemState::Seeking);
  }
  if (code == NavCode::AudioModeChanged) return changeSound();
  const auto* known = std::ranges::find(codeRequests, code, &CodeRequest::code);
  if (known != codeRequests.end()) return serve(known->request);
  if (state_ == ItemState::Starting) return;
  serveVolume(code);
  if (state_ == ItemState::Ending || state_ == ItemState::Paused) return;
  if (code == NavCode::Wake) {
    display_.stopTheme();
    // It would take the place of the strip, and the key that wakes changes nothing.
    if (!display_.stripShown()) display_.showSeekBar();
  }
  if (code == NavCode::Snapshot && !runs(state_)) takeSnapshot();
}

void Viewing::serveVolume(NavCode code) {
  const Clock::Time now = clock_.now();
  switch (code) {
    case NavCode::VolumeUpPress:
    case NavCode::VolumeDownPress:
      volume_.press(code == NavCode::VolumeUpPress ? 1.0 : -1.0, play_.sound(), now);
      showVolumeBar();
      break;
    case NavCode::VolumeUpRelease:
    case NavCode::VolumeDownRelease:
      volume_.release(play_.sound());
      break;
    default:
      break;
  }
}

void Viewing::serveTimes(NavCode code) {
  const Clock::Time now = clock_.now();
  if (seek_ && code == NavCode::None && now - seek_->lastAt >= milliseconds(seekReleaseMs))
    serve(ItemRequest::SeekCommit);
  if (state_ == ItemState::Settling && now - stateSince_ >= settleTime) serve(ItemRequest::Settled);
  if (state_ == ItemState::Ending && now - stateSince_ >= fadeTime) serve(ItemRequest::FadedOut);
}

void Viewing::serveSelection() {
  if (auto item = selection_.poll(display_)) goTo(ItemRequest::Selected, std::move(*item));
}

void Viewing::serveNeighbour() {
  auto track = neighbour_.take();
  if (!track) return;
  trackSteps_ = 0;
  if (*track) goTo(ItemRequest::TrackFound, std::move(**track));
}

void Viewing::goTo(ItemRequest request, std::filesystem::path item) {
  if (state_ == ItemState::Finished) return;
  serve(request);
  if (state_ != ItemState::Finished) return;
  nextPath_ = std::move(item);
  display_.clearError();
  display_.dismissError();
}

/// Even an item whose index cannot be trusted goes on where it was.
void Viewing::changeSound() {
  if (opened_) resumeUs_ = savedPosition();
  display_.closeSettings();
  serve(ItemRequest::ChangeSound);
  soundModeChanged_ = state_ == ItemState::Finished;
}

ItemFacts Viewing::facts() const {
  return {.musicRoom = musicRoom_,
          .marksEpisode = display_.watchedToggleTarget() != nullptr,
          .stripShown = display_.stripShown(),
          .seriesItem = seriesRootOf(path_).has_value(),
          .pastStart = opened_ && play_.positionUs() > 500'000};
}

// --- Steps ---

void Viewing::serve(ItemRequest request) {
  const ItemStep step = stepOf(state_, request, facts());
  if (request == ItemRequest::StreamEnded && step.next == ItemState::Finished) ended_ = true;
  steerPlayer(step.acts, request);
  enter(step.next);
  steerScreen(step.acts);
}

void Viewing::enter(ItemState next) {
  if (next == state_) return;
  state_ = next;
  stateSince_ = clock_.now();
  if (next != ItemState::Seeking && next != ItemState::SeekingInPause) seek_.reset();
  if (next == ItemState::Finished && !opened_) return;
  display_.setVideoPlaying(runs(next));
  display_.setVideoPaused(pausedByViewer(next));
}

/// Whether the player and the screen do what the state says.
bool Viewing::inStep() const {
  if (!opened_ || state_ == ItemState::Finished) return true;
  return play_.paused() != runs(state_) && display_.videoPlaying() == runs(state_) &&
         display_.videoPaused() == pausedByViewer(state_);
}

void Viewing::steerPlayer(ItemActs acts, ItemRequest request) {
  if (acts.has(ItemAct::HideStrip)) display_.hideStrip();
  if (acts.has(ItemAct::StorePosition)) storePosition();
  if (acts.has(ItemAct::Start)) begin();
  if (acts.has(ItemAct::Pause)) play_.pause();
  if (acts.has(ItemAct::FreeSoundDevice)) play_.freeSoundDevice();
  if (acts.has(ItemAct::Resume)) {
    display_.stopTheme();
    play_.takeSoundDevice();
    play_.resume();
  }
  const int direction = request == ItemRequest::SeekForward ? +1 : -1;
  if (acts.has(ItemAct::Seek)) seekStep(direction);
  if (acts.has(ItemAct::StepTrack)) stepTrack(direction);
  if (acts.has(ItemAct::StepSelection)) display_.stepSelection(direction);
  if (acts.has(ItemAct::SeekToStart)) play_.requestSeek(0);
}

void Viewing::steerScreen(ItemActs acts) {
  if (acts.has(ItemAct::DimLights)) context_.lights.hueTriggerPlay();
  if (acts.has(ItemAct::RaiseLights)) context_.lights.hueTriggerPause();
  if (acts.has(ItemAct::Start)) display_.startVideoFadeIn();
  if (acts.has(ItemAct::FadeOut)) display_.startVideoFadeOut();
  if (acts.has(ItemAct::OpenStrip)) {
    display_.openRoomOf(path_);
    display_.alignWithItem(path_);
    display_.showStrip(true);
  }
  if (acts.has(ItemAct::ShowSeekBar)) display_.showSeekBar();
  if (acts.has(ItemAct::SwitchWatched)) switchWatched();
  if (acts.has(ItemAct::Resolve)) selection_.ask(display_);
}

/// The item goes on the screen.
void Viewing::begin() {
  opened_ = true;
  const MovieInfo info = play_.movieInfo();
  if (debugEnabled) {
    std::cout << "[play] now playing: " << path_ << (play_.audioOnly() ? " (audio)" : " (video)")
              << std::endl;
  }
  context_.stored.notes.setFrameSize(path_, info.videoWidth, info.videoHeight);
  if (movieDetailEnabled) std::cout << movieText(path_, info) << std::flush;
  if (isAvi_) storeBoundary(info.videoFramesPerSecond);
  display_.setDuration(play_.durationUs());
  display_.alignWithItem(path_);
  display_.leaveHome();
  display_.selectRoomForPath(path_);
  musicRoom_ = display_.roomKind() == MediaKind::Music;
  play_.start(startPosition());
  lookAhead();
  startGuardUntil_ = clock_.now() + startGuard;
  display_.pauseForSettings();
}

void Viewing::seekStep(int direction) {
  const Clock::Time now = clock_.now();
  if (seek_ && now - seek_->lastAt < milliseconds(seekRepeatGateMs)) return;
  if (!seek_) seek_ = {now, now};
  seek_->lastAt = now;
  const std::int64_t step = seekStepUs(wholeMilliseconds(now - seek_->startedAt));
  play_.requestSeek(wrapPosition(play_.positionUs() + direction * step, play_.durationUs()));
}

// --- The screen ---

/// A file that opens at once leaves the screen as it was; a slow disk must not keep it so.
void Viewing::waitForFile() {
  switch (play_.opening()) {
    case Play::Opening::Underway:
      return liveOn(display_, clock_, startedAt_);
    case Play::Opening::Open:
      return serve(ItemRequest::Opened);
    case Play::Opening::Failed:
      return serve(ItemRequest::StreamEnded);
  }
}

void Viewing::showTurn() {
  switch (play_.nextTurn()) {
    case Play::Turn::Picture:
      show();
      play_.presented();
      break;
    case Play::Turn::Wait:
      show();
      break;
    case Play::Turn::Ended:
      serve(ItemRequest::StreamEnded);
      break;
  }
  // The file would not go there, so what was kept leads nowhere.
  if (play_.takeSeekFailed()) context_.stored.users.setPosition(path_, 0, user_);
}

void Viewing::showStanding() {
  if (state_ == ItemState::SeekingInPause) play_.takeNewest();
  show();
  clock_.sleepFor(standingPass);
}

void Viewing::show() {
  const AVFrame* picture = play_.picture();
  if (picture == nullptr) return display_.presentBlank();
  display_.presentFrame(viewOf(*picture, play_.pictureSerial()), play_.positionUs());
}

void Viewing::repeatVolume() {
  if (opened_ && volume_.repeat(play_.sound(), clock_.now()) && runs(state_)) showVolumeBar();
}

void Viewing::showVolumeBar() {
  const AudioOutput* output = play_.sound();
  if (output == nullptr) return;
  const double ceiling = output->volumeCeilingDb();
  const double volume = output->volumeDb();
  display_.showVolume(volumePercent(volume, ceiling), volume, -60.0, std::max(ceiling, -60.0));
}

void Viewing::takeSnapshot() {
  if (play_.picture() == nullptr) return;
  const std::shared_ptr<AVFrame> picture(av_frame_clone(play_.picture()), ffmpeg::FrameDeleter());
  if (picture) snapshot_.start([picture](JobSide<std::monostate>&) { saveSnapshot(*picture); });
}

/// On the strip the pause key switches the mark of the selected episode, whose tile always knows its file.
void Viewing::switchWatched() {
  const Poster* poster = display_.watchedToggleTarget();
  if (poster == nullptr || !isVideoFile(poster->media)) return;
  StoredUsers& users = context_.stored.users;
  users.markWatched(poster->media, !users.isWatched(poster->media), "");
  display_.refreshWatchedBits();
}

// --- What is kept, and what follows ---

std::int64_t Viewing::startPosition() {
  if (resumeUs_) return *resumeUs_;
  const ResumeStep resume =
      resumeStep(isAvi_, context_.stored.users.resumePosition(path_), play_.durationUs());
  if (resume.dropStored) context_.stored.users.setPosition(path_, 0, user_);
  if (!resume.seekUs) return 0;
  if (console::seekDebugWanted()) {
    std::cout << "[RESUME] seek request=" << *resume.seekUs << "us path=" << path_ << std::endl;
  }
  return *resume.seekUs;
}

void Viewing::storeBoundary(double framesPerSecond) {
  FolderPlayback& playback = context_.stored.playback;
  if (playback.playbackBoundary(path_).value_or(0) >= 1) return;
  playback.setPlaybackBoundary(path_, boundaryForRate(framesPerSecond));
}

void Viewing::storePosition() {
  if (opened_) context_.stored.users.setPosition(path_, savedPosition(), user_);
}

void Viewing::storeEnd() {
  StoredUsers& users = context_.stored.users;
  users.setPlaying(path_, user_);
  if (const auto position = endPositionUs(isAvi_, savedPosition(), play_.durationUs())) {
    users.setPosition(path_, *position, user_);
  }
  if (!watched()) return;
  users.markWatched(path_, true, user_);
  display_.refreshWatchedBits();
}

std::int64_t Viewing::savedPosition() const {
  return savedPositionUs(play_.positionUs(), play_.heardUs());
}

bool Viewing::watched() const {
  return countsAsWatched(play_.positionUs(), play_.durationUs());
}

/// Two quick presses go two tracks, or as far as the album goes.
void Viewing::stepTrack(int direction) {
  trackSteps_ += direction;
  neighbour_.start([path = path_, steps = trackSteps_](auto& side) {
    std::optional<std::filesystem::path> track;
    for (int step = steps; step != 0 && !track && !side.stop(); step += step > 0 ? -1 : +1) {
      track = neighbourTrack(path, step, side.stop());
    }
    side.post(std::move(track));
  });
}

/// Music goes on by itself, and without a pause; a film does not.
void Viewing::lookAhead() {
  if (!isAudioFile(path_)) return;
  following_.start([path = path_](auto& side) { side.post(nextItemAfter(path, side.stop())); });
}

void Viewing::chooseNext() {
  if (nextPath_ || !ended_ || !isAudioFile(path_)) return;
  nextPath_ = awaitOnScreen(display_, clock_, following_).value_or(std::nullopt);
  if (!nextPath_ && watched() && musicRoom_) nextPath_.emplace();
}

}  // namespace tavek

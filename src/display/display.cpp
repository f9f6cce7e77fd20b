#include "display/display.h"

#include "base/background_job.h"
#include "base/process_flags.h"
#include "library/file_types.h"
#include "library/media_paths.h"

namespace tavek {

Display::Display(int x, int y, int width, int height, Orientation orientation, const Stored& stored,
                 Clock& clock)
    : stored_(stored), clock_(clock), picture_(orientation), screen_({x, y, width, height}, picture_) {
  noteActivity(clock_.ticksMs());
}

Display::~Display() {
  // Textures go before the renderer that they live on.
  picture_.destroy();
  clearLogo_.drop();
  posters_.clear();
  // A loader that hangs in a dead disk holds a font, whose library has to stay until the process ends.
  if (!joinLeftThreads(std::chrono::milliseconds(100))) screen_.keepLibraries();
}

NavCode Display::pollInput() {
  const Uint64 now = clock_.ticksMs();
  finishFolderChange(now);
  keys_.updateFocus(flags_);
  if (keys_.releaseLost(flags_)) return NavCode::SeekCommit;
  const NavCode repeated = apply(keys_.repeats(flags_, now), now);
  if (stopSignalled) {
    quitRequested = true;
    return repeated;
  }
  const NavCode code = pumpEvents();
  return code != NavCode::None ? code : repeated;
}

/// Not by SDL_PollEvent: when a pass ends early with a code, that would find nothing in the next one, and the
/// key behind would wait for a whole picture more.
NavCode Display::pumpEvents() {
  SDL_PumpEvents();
  SDL_Event event;
  while (SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0) {
    const NavCode code = handleEvent(event);
    if (code != NavCode::None) return code;
  }
  return NavCode::None;
}

NavCode Display::handleEvent(const SDL_Event& event) {
  const Uint64 now = clock_.ticksMs();
  const KeyResult result = keys_.handle(event, flags_, now);
  if (result.active) noteActivity(now);
  const NavCode code = apply(result, now);
  // The player toggles the settings over a running item; with none running there is nobody to do it.
  return code == NavCode::ToggleSettings && !flags_.videoPlaying ? NavCode::None : code;
}

NavCode Display::apply(const KeyResult& result, Uint64 nowMs) {
  switch (result.effect) {
    case KeyEffect::None:
      break;
    case KeyEffect::TouchSeekBar:
      seekBar_.touch(nowMs);
      break;
    case KeyEffect::ClearSeekBar:
      seekBar_.clearActivity();
      break;
    case KeyEffect::GoHome:
      goHome(true);
      openChooser();
      break;
    case KeyEffect::Move:
      flags_.chooserOpen ? moveUser(result.direction) : moveOnStrip(result.direction, nowMs);
      break;
    case KeyEffect::Activate:
      return selectionAction();
    case KeyEffect::Back:
      return leaveFolder();
    case KeyEffect::Type:
      type(result.character);
      break;
    case KeyEffect::SwitchRoom:
      switchRoom(result.direction);
      break;
    case KeyEffect::ReleaseHome:
      chooser_.setArrows(false, false);
      break;
    case KeyEffect::ConfirmUser:
      confirmUser(nowMs);
      break;
    case KeyEffect::LeaveHome:
      leaveHomeForStrip();
      break;
  }
  return result.code;
}

void Display::presentFrame(const PictureView& picture, std::int64_t positionUs) {
  SDL_Renderer* renderer = screen_.renderer();
  if (renderer == nullptr || picture.width < 1 || picture.height < 1) return;
  PictureView shown = picture;
  if (!(shown.sampleAspect > 0)) shown.sampleAspect = 1.0;
  if (!picture_.upload(renderer, shown)) return;

  SDL_SetRenderDrawColor(renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(renderer);
  const FrameContext frame = frameContext();
  flags_.strip.fadeIn = false;
  picture_.draw(frame, shown);
  drawOverlays(frame, positionUs);
  SDL_RenderPresent(renderer);
}

FrameContext Display::frameContext() const {
  FrameContext frame{.renderer = screen_.renderer(), .baseFont = screen_.baseFont()};
  SDL_GetWindowSize(screen_.window(), &frame.width, &frame.height);
  frame.nowMs = clock_.ticksMs();
  return frame;
}

void Display::drawOverlays(const FrameContext& frame, std::int64_t positionUs) {
  if (!clearLogo_.loaded()) loadClearLogo();
  clearLogo_.draw(frame,
                  {.videoPlaying = flags_.videoPlaying,
                   .videoPaused = flags_.videoPaused,
                   .homeMode = flags_.homeMode,
                   .screensaverActive = flags_.screensaverActive,
                   .stripOn = flags_.strip.any()},
                  currentVideo_);
  volumeBar_.draw(frame);
  if (flags_.chooserOpen) drawChooser(frame);
  advanceStrip(frame.nowMs);
  seekBar_.draw(frame, {.positionUs = positionUs,
                        .videoPaused = flags_.videoPaused,
                        .seekFocus = flags_.seekFocus,
                        .stripShown = flags_.strip.shown()});
  pauseIcon_.draw(frame, flags_.videoPaused && !flags_.homeMode && !flags_.screensaverActive);
  if (!flags_.chooserOpen && (flags_.strip.visible || flags_.strip.sliding)) drawPosters(frame);
  SDL_SetRenderDrawBlendMode(frame.renderer, SDL_BLENDMODE_NONE);
  SDL_SetRenderDrawColor(frame.renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  if (!flags_.videoPlaying) statusLines_.draw(frame, flags_.homeMode);
}

void Display::presentBlank() {
  static constexpr std::array<std::uint8_t, 4> luma{};
  static constexpr std::uint8_t chroma = 128;
  presentFrame({.planes = {luma.data(), &chroma, &chroma}, .pitches = {2, 1, 1}, .width = 2, .height = 2}, 0);
}

void Display::alignWithItem(const std::filesystem::path& path) {
  currentVideo_ = path;
  flags_.audioItem = isAudioFile(path);
  posters_.selectPosterFor(path);
}

void Display::setVideoPlaying(bool playing) {
  const Uint64 now = clock_.ticksMs();
  if (playing != flags_.videoPlaying) noteActivity(now);
  flags_.videoPlaying = playing;
  if (playing) {
    pauseIcon_.reset();
    picture_.fadeOut = {};
    clearLogo_.setSuppressed(false);
    chooser_.endFadeIn();
    pendingFolder_.reset();
    if (flags_.strip.any()) dropStrip();
  } else {
    flags_.videoPaused = false;
    loadClearLogo();
  }
}

void Display::setVideoPaused(bool paused) {
  if (paused == flags_.videoPaused) return;
  const Uint64 now = clock_.ticksMs();
  flags_.videoPaused = paused;
  pauseIcon_.setPaused(paused, now);
  noteActivity(now);
}

void Display::startVideoFadeIn() {
  picture_.fadeIn.start(clock_.ticksMs());
}

void Display::startVideoFadeOut() {
  picture_.fadeOut.start(clock_.ticksMs());
  clearLogo_.setSuppressed(true);
}

void Display::showSeekBar() {
  seekBar_.show(clock_.ticksMs());
  dropStrip();
}

void Display::showVolume(int percent, double gainDb, double minDb, double maxDb) {
  volumeBar_.show(percent, gainDb, minDb, maxDb, clock_.ticksMs());
}

void Display::loadClearLogo() {
  if (!currentVideo_.empty()) clearLogo_.load(screen_.renderer(), currentVideo_);
}

}  // namespace tavek

#include "display/playback/playback_screen.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "display/toolkit/key_input.h"

namespace tavek {

// --- Keys ---

constexpr PlaybackScreen::Key PlaybackScreen::movieKeys[] = {
    {SDLK_LEFT, &PlaybackScreen::sideways},
    {SDLK_RIGHT, &PlaybackScreen::sideways},
    {SDLK_AUDIOFASTFORWARD, &PlaybackScreen::mediaSeek},
    {SDLK_AUDIOREWIND, &PlaybackScreen::mediaSeek},
    {SDLK_UP, &PlaybackScreen::dropSeekBar},
    {SDLK_RETURN, &PlaybackScreen::openPosters},
    {SDLK_KP_ENTER, &PlaybackScreen::openPosters},
    {SDLK_PRINTSCREEN, &PlaybackScreen::snapshot},
};

Meaning PlaybackScreen::key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  if (!press.down) return movieKeyUp(press.key, facts);
  const auto* entry = std::ranges::find(movieKeys, press.key, &Key::key);
  return entry != std::end(movieKeys) ? (this->*entry->serve)(press, facts, nowMs) : Meaning(Unhandled());
}

Meaning PlaybackScreen::move(Direction direction, const FocusFacts& facts, Uint64 /*nowMs*/) {
  if (!facts.seekFocus) return Unhandled();
  if (direction == Direction::Left) return NavCode::SeekBackward;
  return direction == Direction::Right ? Meaning(NavCode::SeekForward) : Meaning(Unhandled());
}

/// While a film runs they seek; while it stands they are the volume.
Meaning PlaybackScreen::sideways(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  const bool right = press.key == SDLK_RIGHT;
  if (facts.running() || facts.stripAny) {
    return startSeek(right ? NavCode::SeekForward : NavCode::SeekBackward, nowMs);
  }
  volumeKey_ = press.key;
  return right ? NavCode::VolumeUpPress : NavCode::VolumeDownPress;
}

Meaning PlaybackScreen::mediaSeek(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 nowMs) {
  return startSeek(press.key == SDLK_AUDIOFASTFORWARD ? NavCode::SeekForward : NavCode::SeekBackward, nowMs);
}

Meaning PlaybackScreen::dropSeekBar(const KeyPress& /*press*/, const FocusFacts& /*facts*/,
                                    Uint64 /*nowMs*/) {
  if (!videoPaused_) seekBar_.clearActivity();
  return Handled();
}

Meaning PlaybackScreen::openPosters(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 /*nowMs*/) {
  return press.repeat ? Meaning(Handled()) : Meaning(NavCode::OpenPosters);
}

Meaning PlaybackScreen::snapshot(const KeyPress& /*press*/, const FocusFacts& facts, Uint64 /*nowMs*/) {
  return facts.running() ? Meaning(Handled()) : Meaning(NavCode::Snapshot);
}

Meaning PlaybackScreen::startSeek(NavCode code, Uint64 nowMs) {
  seekFocus_ = true;
  seekBar_.touch(nowMs);
  return code;
}

Meaning PlaybackScreen::movieKeyUp(SDL_Keycode key, const FocusFacts& facts) {
  const bool sideways = key == SDLK_LEFT || key == SDLK_RIGHT;
  const bool media = key == SDLK_AUDIOFASTFORWARD || key == SDLK_AUDIOREWIND;
  if (!media && !(sideways && seekFocus_)) return Unhandled();
  if (facts.chooserOpen || facts.stripAny) return Handled();
  seekFocus_ = false;
  return NavCode::SeekCommit;
}

std::optional<NavCode> PlaybackScreen::volumeRelease(const KeyPress& press) {
  if (press.down || volumeKey_ == SDLK_UNKNOWN || press.key != volumeKey_) return {};
  return std::exchange(volumeKey_, SDLK_UNKNOWN) == SDLK_RIGHT ? NavCode::VolumeUpRelease
                                                               : NavCode::VolumeDownRelease;
}

// --- The item ---

void PlaybackScreen::setItem(std::filesystem::path file, bool audio) {
  currentVideo_ = std::move(file);
  audioItem_ = audio;
}

bool PlaybackScreen::setVideoPlaying(bool playing) {
  const bool changed = std::exchange(videoPlaying_, playing) != playing;
  if (playing) {
    pauseIcon_.reset();
    picture_.fadeOut = {};
    clearLogo_.setSuppressed(false);
  } else {
    videoPaused_ = false;
  }
  return changed;
}

bool PlaybackScreen::setVideoPaused(bool paused, Uint64 nowMs) {
  if (std::exchange(videoPaused_, paused) == paused) return false;
  pauseIcon_.setPaused(paused, nowMs);
  return true;
}

void PlaybackScreen::startFadeOut(Uint64 nowMs) {
  picture_.fadeOut.start(nowMs);
  clearLogo_.setSuppressed(true);
}

void PlaybackScreen::reset() {
  setItem({}, false);
  seekBar_.reset();
  volumeBar_.reset();
  clearLogo_.drop();
  clearLogo_.setSuppressed(false);
}

void PlaybackScreen::destroyTextures() {
  picture_.destroy();
  clearLogo_.drop();
}

// --- Drawing ---

bool PlaybackScreen::drawPicture(const FrameContext& frame, const PictureView& picture,
                                 std::int64_t positionUs, bool hidden) {
  PictureView shown = picture;
  if (!(shown.sampleAspect > 0)) shown.sampleAspect = 1.0;
  if (!picture_.upload(frame.renderer, shown)) return false;
  positionUs_ = positionUs;
  pictureSize_ = {shown.width, shown.height};
  SDL_SetRenderDrawColor(frame.renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(frame.renderer);
  if (!hidden) picture_.draw(frame, shown);
  return true;
}

void PlaybackScreen::drawOnPicture(const FrameContext& frame, const FocusFacts& facts) {
  clearLogo_.follow(frame.renderer, currentVideo_, frame.nowMs);
  clearLogo_.draw(frame,
                  {.videoPlaying = videoPlaying_,
                   .videoPaused = videoPaused_,
                   .homeMode = facts.homeMode || facts.saverActive,
                   .stripOn = facts.stripAny},
                  currentVideo_);
  volumeBar_.draw(frame);
}

void PlaybackScreen::draw(const FrameContext& frame, const FocusFacts& facts) {
  seekBar_.draw(frame, {.positionUs = positionUs_,
                        .videoPaused = videoPaused_,
                        .seekFocus = seekFocus_,
                        .stripShown = facts.stripShown});
  pauseIcon_.draw(frame, videoPaused_ && !facts.homeMode && !facts.saverActive);
}

}  // namespace tavek

#include "display/playback/playback_screen.h"

#include <algorithm>
#include <array>
#include <utility>

#include "display/toolkit/key_input.h"

namespace tavek {
namespace {

struct KeyCode {
  SDL_Keycode key;
  NavCode code;
};

/// In a music room up and down step the track, and left and right are dead.
constexpr std::array musicKeys{
    KeyCode{SDLK_RETURN, NavCode::OpenPosters},
    KeyCode{SDLK_KP_ENTER, NavCode::OpenPosters},
    KeyCode{SDLK_DOWN, NavCode::SeekForward},
    KeyCode{SDLK_UP, NavCode::SeekBackward},
    KeyCode{SDLK_AUDIOFASTFORWARD, NavCode::SeekForward},
    KeyCode{SDLK_AUDIOREWIND, NavCode::SeekBackward},
};

}  // namespace

// --- Keys ---

Meaning PlaybackScreen::key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  if (focusOf(facts) == FocusName::Music) return press.down ? musicKeyDown(press.key) : Meaning(Unhandled());
  return press.down ? movieKeyDown(press, facts, nowMs) : movieKeyUp(press.key, facts);
}

Meaning PlaybackScreen::move(Direction direction, const FocusFacts& facts, Uint64 /*nowMs*/) {
  if (!facts.seekFocus) return Unhandled();
  if (direction == Direction::Left) return NavCode::SeekBackward;
  return direction == Direction::Right ? Meaning(NavCode::SeekForward) : Meaning(Unhandled());
}

Meaning PlaybackScreen::movieKeyDown(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  switch (press.key) {
    case SDLK_LEFT:
    case SDLK_RIGHT:
      return sidewaysDown(press, facts, nowMs);
    case SDLK_AUDIOFASTFORWARD:
      return startSeek(NavCode::SeekForward, nowMs);
    case SDLK_AUDIOREWIND:
      return startSeek(NavCode::SeekBackward, nowMs);
    case SDLK_UP:
      if (!videoPaused_) seekBar_.clearActivity();
      return Handled();
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return press.repeat ? Meaning(Handled()) : Meaning(NavCode::OpenPosters);
    case SDLK_PRINTSCREEN:
      return facts.running() ? Meaning(Handled()) : Meaning(NavCode::Snapshot);
    default:
      return Unhandled();
  }
}

/// While a film runs they seek; while it stands they are the volume.
Meaning PlaybackScreen::sidewaysDown(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  const bool right = press.key == SDLK_RIGHT;
  if (facts.running() || facts.stripAny) {
    return startSeek(right ? NavCode::SeekForward : NavCode::SeekBackward, nowMs);
  }
  volumeKey_ = press.key;
  return right ? NavCode::VolumeUpPress : NavCode::VolumeDownPress;
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

Meaning PlaybackScreen::musicKeyDown(SDL_Keycode key) const {
  const auto* entry = std::ranges::find(musicKeys, key, &KeyCode::key);
  return entry != musicKeys.end() ? Meaning(entry->code) : Meaning(Unhandled());
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

bool PlaybackScreen::drawPicture(const FrameContext& frame, const PictureView& picture) {
  PictureView shown = picture;
  if (!(shown.sampleAspect > 0)) shown.sampleAspect = 1.0;
  if (!picture_.upload(frame.renderer, shown)) return false;
  SDL_SetRenderDrawColor(frame.renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
  SDL_RenderClear(frame.renderer);
  picture_.draw(frame, shown);
  return true;
}

void PlaybackScreen::drawLogo(const FrameContext& frame, const FocusFacts& facts) {
  clearLogo_.follow(frame.renderer, currentVideo_, frame.nowMs);
  clearLogo_.draw(frame,
                  {.videoPlaying = videoPlaying_,
                   .videoPaused = videoPaused_,
                   .homeMode = facts.homeMode,
                   .stripOn = facts.stripAny},
                  currentVideo_);
}

void PlaybackScreen::drawSeekBar(const FrameContext& frame, const FocusFacts& facts,
                                 std::int64_t positionUs) {
  seekBar_.draw(frame, {.positionUs = positionUs,
                        .videoPaused = videoPaused_,
                        .seekFocus = seekFocus_,
                        .stripShown = facts.stripShown});
}

void PlaybackScreen::drawPauseIcon(const FrameContext& frame, const FocusFacts& facts) {
  pauseIcon_.draw(frame, videoPaused_ && !facts.homeMode);
}

}  // namespace tavek

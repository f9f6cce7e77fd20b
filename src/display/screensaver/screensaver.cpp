#include "display/screensaver/screensaver.h"

#include <cmath>
#include <utility>

#include "display/toolkit/colour.h"
#include "display/toolkit/shapes.h"

namespace tavek {
namespace {

/// What stands is drawn anew now and then, for a screen that was switched off meanwhile; what drifts, as
/// often as anyone sees.
constexpr Uint64 restMs = 500;
constexpr Uint64 driftMs = 33;

}  // namespace

// --- Keys ---

Meaning Screensaver::key(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 nowMs) {
  if (!press.down) keysDown_.erase(press.key);
  if (!press.down || press.repeat) return Handled();
  keysDown_.insert(press.key);
  fade_.end(nowMs);
  touch(nowMs);
  return NavCode::Wake;
}

bool Screensaver::takesKey(const KeyPress& press) {
  if (on()) return true;
  // It came up unseen.
  if (press.down && !press.repeat) keysDown_.erase(press.key);
  return keysDown_.contains(press.key);
}

Meaning Screensaver::event(const SDL_Event& event, Uint64 /*nowMs*/) {
  if (event.type == SDL_WINDOWEVENT) drawnAt_ = 0;
  return Handled();
}

// --- Its life ---

void Screensaver::start(Uint64 nowMs) {
  const bool wasActive = fade_.active;
  fade_.start(nowMs);
  if (!wasActive) resetSlideshow();
}

Meaning Screensaver::advance(Uint64 nowMs) {
  if (fade_.advance(nowMs)) resetSlideshow();
  return Unhandled();
}

void Screensaver::resetSlideshow() {
  slides_.reset();
  caption_.drop();
  music_.drop();
  screensaverFrame_.reset();
  drawnAt_ = 0;
}

void Screensaver::destroyTextures() {
  resetSlideshow();
  musicArt_ = {};
}

// --- Drawing ---

/// What the workers have brought; true if that is to be drawn.
bool Screensaver::follow(const FrameContext& frame, const FocusFacts& facts) {
  if (facts.audioItem) return frame.nowMs >= drawnAt_ + driftMs;
  bool changed = slides_.follow(frame);
  changed = caption_.follow(frame, slides_.current(), slides_.startedAt()) || changed;
  if (caption_.slideGone()) {
    slides_.dropCurrent();
    caption_.drop();
  }
  return changed || frame.nowMs >= drawnAt_ + restMs;
}

bool Screensaver::drawAlone(const FrameContext& frame, const FocusFacts& facts) {
  screensaverFrame_.reset();
  if (!follow(frame, facts)) return false;
  drawScreensaver(frame, facts);
  drawnAt_ = frame.nowMs;
  return true;
}

void Screensaver::drawScreensaver(const FrameContext& frame, const FocusFacts& facts) {
  SDL_SetRenderDrawBlendMode(frame.renderer, SDL_BLENDMODE_NONE);
  setDrawColour(frame.renderer, theme::black);
  SDL_RenderClear(frame.renderer);
  const BlendScope blend(frame.renderer);
  if (facts.audioItem) return music_.draw(frame, musicArt_, fade_.alpha);
  slides_.draw(frame);
  caption_.draw(frame, lastPicture_);
}

/// A target of the window's size to draw it into. All of it is drawn, and without a channel of its own for
/// that, laying it over the screen takes a quarter of the time where there is no graphics chip.
bool Screensaver::prepareFrame(const FrameContext& frame) {
  if (screensaverFrame_ && frameSize_.x == frame.width && frameSize_.y == frame.height) return true;
  screensaverFrame_.reset(SDL_CreateTexture(frame.renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_TARGET,
                                            frame.width, frame.height));
  frameSize_ = {frame.width, frame.height};
  return screensaverFrame_ && SDL_SetTextureBlendMode(screensaverFrame_.get(), SDL_BLENDMODE_BLEND) == 0;
}

void Screensaver::draw(const FrameContext& frame, const FocusFacts& facts) {
  if (frame.renderer == nullptr || frame.width <= 0 || frame.height <= 0) return;
  if (fade_.alpha <= 0) return;
  follow(frame, facts);
  if (!prepareFrame(frame)) {
    if (fade_.active) drawScreensaver(frame, facts);
    return;
  }
  SDL_Texture* before = SDL_GetRenderTarget(frame.renderer);
  SDL_SetRenderTarget(frame.renderer, screensaverFrame_.get());
  drawScreensaver(frame, facts);
  SDL_SetRenderTarget(frame.renderer, before);
  SDL_SetTextureAlphaMod(screensaverFrame_.get(), static_cast<Uint8>(std::lround(fade_.alpha * 255)));
  SDL_RenderCopy(frame.renderer, screensaverFrame_.get(), nullptr, nullptr);
  SDL_SetTextureAlphaMod(screensaverFrame_.get(), 255);
}

}  // namespace tavek

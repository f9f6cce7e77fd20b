#include "display/settings/audio_page.h"

#include "display/toolkit/rows.h"

namespace tavek {
namespace {

constexpr SDL_Keycode remoteSelect = 353;

bool flips(SDL_Keycode key) {
  switch (key) {
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
    case SDLK_UP:
    case SDLK_DOWN:
    case remoteSelect:
      return true;
    default:
      return false;
  }
}

}  // namespace

PageAct AudioPage::key(const KeyPress& press, Uint64 /*nowMs*/) {
  if (!flips(press.key)) return PageAct::Unhandled;
  if (press.repeat) return PageAct::Handled;
  flipSoundMode();
  return PageAct::SoundMode;
}

void AudioPage::flipSoundMode() {
  soundMode_ = soundMode_ == SoundMode::Stereo ? SoundMode::Surround : SoundMode::Stereo;
  settings_.setSoundMode(static_cast<std::int32_t>(soundMode_));
}

void AudioPage::draw(const FrameContext& frame, int top, bool focused) {
  drawToggleRow({.row = {.renderer = frame.renderer,
                         .font = frame.baseFont,
                         .rect = {32, top + 28, frame.width - 64, 60},
                         .label = "Enable surround output",
                         .shadow = rgba(0, 0, 0, 150)},
                 .focused = focused,
                 .on = soundMode_ != SoundMode::Stereo,
                 .rightPad = 24,
                 .switchWidth = 74});
}

}  // namespace tavek

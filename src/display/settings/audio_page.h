#pragma once

#include "base/sound_mode.h"
#include "display/settings/settings_page.h"
#include "state/stored_settings.h"

namespace tavek {

/// One row: surround or stereo. A change counts and is stored at once.
class AudioPage final : public SettingsPage {
 public:
  explicit AudioPage(StoredSettings& settings) : settings_(settings) {}

  void open() override {}
  PageAct key(const KeyPress& press, Uint64 nowMs) override;
  void draw(const FrameContext& frame, int top, bool focused) override;

  SoundMode soundMode() const { return soundMode_; }
  void setSoundMode(SoundMode mode) { soundMode_ = mode; }

 private:
  void flipSoundMode();

  StoredSettings& settings_;
  SoundMode soundMode_ = SoundMode::Auto;
};

}  // namespace tavek

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "base/sound_mode.h"
#include "display/settings/audio_page.h"
#include "display/settings/hue_page.h"
#include "display/settings/settings_page.h"
#include "display/settings/users_page.h"
#include "display/toolkit/layer.h"
#include "state/stored.h"

namespace tavek {

/// In the order of the tabs.
enum class SettingsTab : std::int32_t { Users = 0, Audio = 1, Bluetooth = 2, Network = 3, Hue = 4 };

/// The settings: one page over everything else, and the tabs that lead to the others. The tab that was opened
/// last is remembered.
class Settings final : public Layer {
 public:
  /// `usersChanged` is called when a user was added, renamed or removed.
  Settings(const Stored& stored, std::function<void()> usersChanged);

  bool isOpen() const { return open_; }
  /// Who has the keys while they are open.
  std::optional<FocusName> focus() const;
  /// `playing`: an item runs, and is to pause for as long as they are open.
  void openSettings(bool playing);
  /// An item that they have paused goes on.
  void closeSettings();
  /// An item begins under them.
  void pausePlayback();
  /// The item is left: it neither pauses nor goes on.
  void forgetPlayback() { pausedPlayback_ = pauseToggle_ = false; }
  bool takePauseToggle() { return std::exchange(pauseToggle_, false); }
  bool wantsText() const { return open_ && focused_ && page().wantsText(); }

  SoundMode soundMode() const { return audio_.soundMode(); }
  void setSoundMode(SoundMode mode) { audio_.setSoundMode(mode); }

  bool owns(FocusName /*focus*/) const override { return open_; }
  Meaning key(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) override;
  Meaning move(Direction /*direction*/, const FocusFacts& /*facts*/, Uint64 /*nowMs*/) override {
    return Handled();
  }
  bool repeats(const FocusFacts& /*facts*/) const override { return false; }
  Meaning event(const SDL_Event& event, Uint64 nowMs) override;
  Meaning advance(Uint64 nowMs) override;
  void draw(const FrameContext& frame, const FocusFacts& facts) override;
  void destroyTextures() override {}

 private:
  /// A tab that has no content yet.
  class EmptyPage final : public SettingsPage {
   public:
    void open() override {}
    PageAct key(const KeyPress& /*press*/, Uint64 /*nowMs*/) override { return PageAct::Unhandled; }
    void draw(const FrameContext& /*frame*/, int /*top*/, bool /*focused*/) override {}
  };
  static constexpr std::size_t tabCount = 5;

  SettingsPage& page() const { return *pages_[static_cast<std::size_t>(tab_)]; }
  void selectTab(SettingsTab tab);
  void showTab(SettingsTab tab);
  void enterTab();
  void moveCursor(int delta);
  void back();
  Meaning tabsKey(const KeyPress& press);
  Meaning pageKey(const KeyPress& press, Uint64 nowMs);
  void click(SDL_Point point, Uint64 nowMs);

  StoredSettings& settings_;
  UsersPage users_;
  AudioPage audio_;
  EmptyPage bluetooth_, network_;
  HuePage hue_;
  const std::array<SettingsPage*, tabCount> pages_{&users_, &audio_, &bluetooth_, &network_, &hue_};
  bool open_ = false;
  bool focused_ = false;                  ///< the focus is inside the page, not on the tabs
  SettingsTab tab_ = SettingsTab::Audio;  ///< whose page is shown
  SettingsTab cursor_ = SettingsTab::Audio;
  std::vector<SDL_Rect> tabRects_;  ///< of the last frame; empty before it
  bool pausedPlayback_ = false;
  bool pauseToggle_ = false;  ///< still to be told to whoever plays
};

}  // namespace tavek

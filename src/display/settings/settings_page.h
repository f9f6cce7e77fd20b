#pragma once

#include <string_view>

#include <SDL.h>

#include "display/toolkit/frame_context.h"
#include "display/toolkit/layer.h"

/// One tab's content in the settings.
namespace tavek {

/// What a key means to the settings around a page.
enum class PageAct {
  Unhandled,
  Handled,
  PreviousTab,  ///< the tab before this one
  ToAudio,      ///< the page is done with; Audio is the tab
  Close,        ///< the settings close
  SoundMode,    ///< another sound mode was chosen
};

/// A page owns all of its state. Main thread only; times are the clock's milliseconds.
class SettingsPage {
 public:
  SettingsPage() = default;
  virtual ~SettingsPage() = default;
  SettingsPage(const SettingsPage&) = delete;
  SettingsPage& operator=(const SettingsPage&) = delete;

  /// Its tab was selected; what it edits is read anew.
  virtual void open() = 0;
  /// Its tab was selected again.
  virtual void reload() {}
  /// Another tab was selected, or the settings closed: edits that are not saved are dropped, and workers
  /// left.
  virtual void close() {}
  /// A list over the page closes; false if none is open.
  virtual bool closeList() { return false; }

  /// A key goes down, with the focus inside the page; held ones repeat.
  virtual PageAct key(const KeyPress& press, Uint64 nowMs) = 0;
  /// Whether typed text is wanted just now, with the focus inside the page or not.
  virtual bool wantsText() const { return false; }
  /// UTF-8, with the focus inside the page.
  virtual void text(std::string_view /*typed*/, Uint64 /*nowMs*/) {}
  /// A click below the tabs, in the pixels of the last frame; true takes the focus into the page.
  virtual bool click(SDL_Point /*point*/, Uint64 /*nowMs*/) { return false; }
  /// Once per pass: what workers have brought.
  virtual void advance(Uint64 /*nowMs*/) {}

  /// The whole output, with the tabs drawn; the content begins at `top`. `focused`: the focus is inside.
  virtual void draw(const FrameContext& frame, int top, bool focused) = 0;
};

}  // namespace tavek

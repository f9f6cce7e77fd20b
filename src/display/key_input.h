#pragma once

#include <SDL.h>

#include "display/focus.h"
#include "display/toolkit/held_keys.h"
#include "display/toolkit/nav_code.h"

namespace tavek {

/// What a key asks of the screens beside the code that it gives to the player.
enum class KeyEffect {
  None,
  TouchSeekBar,  ///< a seek key went down
  ClearSeekBar,  ///< the bar goes away
  GoHome,        ///< the home step
  Move,          ///< one step in a direction, on the strip or among the users
  Activate,      ///< Enter on the strip
  Back,          ///< a level up in a series, else out of the strip
  Type,          ///< a character for the letter bar; a backspace takes the last one away
  SwitchRoom,    ///< up or down on the home screen
  ReleaseHome,   ///< a key of the home screen went up
  ConfirmUser,   ///< Enter on the home screen
  LeaveHome,     ///< the same with no users to choose from
};

struct KeyResult {
  NavCode code = NavCode::None;
  KeyEffect effect = KeyEffect::None;
  Direction direction = Direction::Left;  ///< of Move and SwitchRoom
  char character = 0;                     ///< of Type
  bool active = false;                    ///< the viewer did something
};

/// Turns SDL's events into codes, by the focus that follows from the flags. The only flag that it sets is
/// seekFocus. Main thread only; times are SDL_GetTicks64 milliseconds.
class KeyInput {
 public:
  FocusName focus() const { return focus_; }
  /// Takes the focus that the flags give, and drops what was held for another one.
  void updateFocus(NavFlags& flags);
  /// A seek key whose release was eaten by a change of focus is let go; true if that ended a seek.
  bool releaseLost(NavFlags& flags);
  /// The repeats of a held key.
  KeyResult repeats(const NavFlags& flags, Uint64 nowMs);
  KeyResult handle(const SDL_Event& event, NavFlags& flags, Uint64 nowMs);

 private:
  bool trackPhysicalKeys(const SDL_KeyboardEvent& key);
  bool passesRepeatFilter(const SDL_KeyboardEvent& key, const NavFlags& flags) const;
  void setFocus(FocusName next, NavFlags& flags);
  KeyResult moveDirection(Direction direction, const NavFlags& flags) const;
  KeyResult pressAndMove(Direction direction, const NavFlags& flags, Uint64 nowMs);

  KeyResult globalKey(SDL_Keycode key, const NavFlags& flags) const;
  KeyResult focusedKey(const SDL_KeyboardEvent& key, NavFlags& flags, Uint64 nowMs);
  KeyResult homeKeyDown(const SDL_KeyboardEvent& key, const NavFlags& flags, Uint64 nowMs);
  KeyResult chooserKeyDown(const SDL_KeyboardEvent& key, const NavFlags& flags, Uint64 nowMs);
  KeyResult movieKeyDown(const SDL_KeyboardEvent& key, NavFlags& flags, Uint64 nowMs);
  KeyResult movieKeyUp(SDL_Keycode key, NavFlags& flags);
  KeyResult musicKeyDown(const SDL_KeyboardEvent& key);
  KeyResult posterKeyDown(const SDL_KeyboardEvent& key, const NavFlags& flags, Uint64 nowMs);
  KeyResult startSeek(NavCode code, NavFlags& flags) const;
  KeyResult endSeek(NavFlags& flags);
  void releaseKey(SDL_Keycode key);

  FocusName focus_ = FocusName::Movie;
  HeldKeys held_;
  bool leftKeyDown_ = false;  ///< the physical keys, whatever the focus made of them
  bool rightKeyDown_ = false;
  bool keyboardDirections_ = false;  ///< the held direction came from a key event
  bool audioPlayDown_ = false;       ///< some remotes send the press twice
};

}  // namespace tavek

#pragma once

#include <optional>

#include "display/toolkit/layer.h"

namespace tavek {

std::optional<Direction> directionOf(SDL_Keycode key);
bool isEnter(SDL_Keycode key);
/// The line of --show-keycodes.
void printKey(const KeyPress& press);

/// The physical facts of the keys: what is held, repeated, pressed twice or let go unseen. Knows no screen.
class KeyInput {
 public:
  /// A key event as a press; none for what a remote sends twice. A direction that goes down is held from then
  /// on.
  std::optional<KeyPress> take(const SDL_KeyboardEvent& event, Uint64 nowMs);
  /// What was held for another screen is let go.
  void clear() { held_.clear(); }
  /// The direction of which a repeat is due; the sideways ones alone repeat.
  std::optional<Direction> repeatDue(Uint64 nowMs);
  /// A sideways direction is held whose key is up: its release was eaten by a change of focus.
  bool releaseLost() const;

 private:
  HeldKeys held_;
  bool leftKeyDown_ = false;
  bool rightKeyDown_ = false;
  bool audioPlayDown_ = false;  ///< some remotes send the press twice
};

}  // namespace tavek

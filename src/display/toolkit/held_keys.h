#pragma once

#include <array>
#include <cstddef>

#include <SDL.h>

namespace tavek {

enum class Direction : std::size_t { Left = 0, Right = 1, Up = 2, Down = 3 };

/// The direction keys that are held, with the repeats that the program makes itself: remotes often send none.
/// Times are milliseconds of the display's clock.
class HeldKeys {
 public:
  /// Lets go of the opposite direction.
  void press(Direction direction, Uint64 nowMs);
  void release(Direction direction) { key(direction).held = false; }
  void clear() { keys_ = {}; }
  bool held(Direction direction) const { return keys_[static_cast<std::size_t>(direction)].held; }
  /// The key has been down for 275 ms and its last repeat is 130 ms ago; true starts the next 130 ms.
  bool repeatDue(Direction direction, Uint64 nowMs);

 private:
  struct Key {
    bool held = false;
    Uint64 pressedAt = 0;
    Uint64 lastRepeatAt = 0;
  };
  Key& key(Direction direction) { return keys_[static_cast<std::size_t>(direction)]; }

  std::array<Key, 4> keys_;
};

}  // namespace tavek

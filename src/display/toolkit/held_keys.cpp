#include "display/toolkit/held_keys.h"

namespace tavek {
namespace {

Direction opposite(Direction direction) {
  constexpr std::array opposites = {Direction::Right, Direction::Left, Direction::Down, Direction::Up};
  return opposites[static_cast<std::size_t>(direction)];
}

}  // namespace

void HeldKeys::press(Direction direction, Uint64 nowMs) {
  key(direction) = {.held = true, .pressedAt = nowMs, .lastRepeatAt = 0};
  release(opposite(direction));
}

bool HeldKeys::repeatDue(Direction direction, Uint64 nowMs) {
  constexpr Uint64 firstMs = 275;
  constexpr Uint64 nextMs = 130;
  Key& k = key(direction);
  if (!k.held || nowMs < k.pressedAt + firstMs || nowMs < k.lastRepeatAt + nextMs) return false;
  k.lastRepeatAt = nowMs;
  return true;
}

}  // namespace tavek

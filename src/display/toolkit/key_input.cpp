#include "display/toolkit/key_input.h"

#include <iostream>

namespace tavek {
std::optional<Direction> directionOf(SDL_Keycode key) {
  switch (key) {
    case SDLK_LEFT:
      return Direction::Left;
    case SDLK_RIGHT:
      return Direction::Right;
    case SDLK_UP:
      return Direction::Up;
    case SDLK_DOWN:
      return Direction::Down;
    default:
      return {};
  }
}

bool isEnter(SDL_Keycode key) {
  return key == SDLK_RETURN || key == SDLK_KP_ENTER;
}

void printKey(const KeyPress& press) {
  const char* kind = !press.down ? "keyup" : press.repeat ? "keyrepeat" : "keydown";
  std::cout << "[KEY] " << kind << " sym=" << press.key << " name=" << SDL_GetKeyName(press.key)
            << " repeat=" << (press.repeat ? 1 : 0) << std::endl;
}

std::optional<KeyPress> KeyInput::take(const SDL_KeyboardEvent& event, Uint64 nowMs) {
  const KeyPress press{event.keysym.sym, event.type == SDL_KEYDOWN, event.repeat != 0,
                       (event.keysym.mod & KMOD_SHIFT) != 0};
  if (press.key == SDLK_AUDIOPLAY) {
    const bool first = press.down && !press.repeat && !audioPlayDown_;
    audioPlayDown_ = press.down;
    if (!first) return {};
  }
  const auto direction = directionOf(press.key);
  if (!direction || press.repeat) return press;
  if (direction == Direction::Left) leftKeyDown_ = press.down;
  if (direction == Direction::Right) rightKeyDown_ = press.down;
  press.down ? held_.press(*direction, nowMs) : held_.release(*direction);
  return press;
}

std::optional<Direction> KeyInput::repeatDue(Uint64 nowMs) {
  for (const Direction direction : {Direction::Left, Direction::Right}) {
    if (held_.repeatDue(direction, nowMs)) return direction;
  }
  return {};
}

bool KeyInput::releaseLost() const {
  return (held_.held(Direction::Left) && !leftKeyDown_) || (held_.held(Direction::Right) && !rightKeyDown_);
}

}  // namespace tavek

#include "display/key_input.h"

#include <iostream>
#include <optional>

#include "base/process_flags.h"

namespace tavek {
namespace {

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

bool isSideways(SDL_Keycode key) {
  return key == SDLK_LEFT || key == SDLK_RIGHT;
}

bool countsAsActivity(Uint32 type) {
  return type == SDL_KEYDOWN || type == SDL_TEXTINPUT || type == SDL_JOYBUTTONDOWN ||
         type == SDL_CONTROLLERBUTTONDOWN;
}

void printKey(const SDL_KeyboardEvent& key) {
  const char* kind = key.type == SDL_KEYUP ? "keyup" : key.repeat != 0 ? "keyrepeat" : "keydown";
  std::cout << "[KEY] " << kind << " sym=" << key.keysym.sym << " name=" << SDL_GetKeyName(key.keysym.sym)
            << " repeat=" << (key.repeat != 0 ? 1 : 0) << std::endl;
}

}  // namespace

void KeyInput::updateFocus(NavFlags& flags) {
  setFocus(focusOf(flags), flags);
}

void KeyInput::setFocus(FocusName next, NavFlags& flags) {
  if (next == focus_) return;
  if (focusModeEnabled) std::cout << "[FOCUS] " << focusText(next) << std::endl;
  const bool startsSeek =
      next == FocusName::Seek && (focus_ == FocusName::Movie || focus_ == FocusName::Music);
  focus_ = next;
  // The key that started a seek goes on repeating.
  if (startsSeek) return;
  held_.clear();
  if (next != FocusName::Seek) flags.seekFocus = false;
}

bool KeyInput::releaseLost(NavFlags& flags) {
  const bool heldSideways = held_.held(Direction::Left) || held_.held(Direction::Right);
  if (!keyboardDirections_ || leftKeyDown_ || rightKeyDown_ || !heldSideways) return false;
  held_.clear();
  const bool overlay =
      flags.homeMode || flags.chooserOpen || flags.settingsOpen || flags.anyPage() || flags.strip.any();
  if (!flags.seekFocus || overlay) return false;
  flags.seekFocus = false;
  updateFocus(flags);
  return true;
}

KeyResult KeyInput::repeats(const NavFlags& flags, Uint64 nowMs) {
  if (flags.chooserOpen || flags.settingsOpen || flags.anyPage()) return {};
  const FocusName focus = focusOf(flags);
  const bool onStrip = focus == FocusName::Tv || focus == FocusName::Poster;
  if ((!onStrip || flags.selectionSettling) && focus != FocusName::Seek) return {};
  for (const Direction direction : {Direction::Left, Direction::Right}) {
    if (held_.repeatDue(direction, nowMs)) return moveDirection(direction, flags);
  }
  return {};
}

KeyResult KeyInput::handle(const SDL_Event& event, NavFlags& flags, Uint64 nowMs) {
  const bool isKey = event.type == SDL_KEYDOWN || event.type == SDL_KEYUP;
  if (isKey && (!trackPhysicalKeys(event.key) || !passesRepeatFilter(event.key, flags))) return {};
  if (isKey && showKeycodesEnabled) printKey(event.key);
  KeyResult result;
  if (event.type == SDL_QUIT) {
    quitRequested = true;
    result.code = NavCode::Quit;
  } else if (isKey) {
    if (event.type == SDL_KEYDOWN && event.key.repeat == 0) result = globalKey(event.key.keysym.sym, flags);
    const bool handled = result.code != NavCode::None || result.effect != KeyEffect::None;
    const bool counts =
        !flags.homeMode || result.code == NavCode::ToggleSettings || result.code == NavCode::GoHome;
    if (!handled || !counts) result = focusedKey(event.key, flags, nowMs);
  }
  result.active = countsAsActivity(event.type);
  return result;
}

/// False drops the event.
bool KeyInput::trackPhysicalKeys(const SDL_KeyboardEvent& key) {
  const SDL_Keycode sym = key.keysym.sym;
  const bool down = key.type == SDL_KEYDOWN;
  if (sym == SDLK_AUDIOPLAY) {
    const bool first = down && key.repeat == 0 && !audioPlayDown_;
    audioPlayDown_ = down;
    return first;
  }
  if (down && key.repeat != 0) return true;
  if (sym == SDLK_LEFT) leftKeyDown_ = down;
  if (sym == SDLK_RIGHT) rightKeyDown_ = down;
  return true;
}

bool KeyInput::passesRepeatFilter(const SDL_KeyboardEvent& key, const NavFlags& flags) const {
  const SDL_Keycode sym = key.keysym.sym;
  if (key.type != SDL_KEYDOWN || key.repeat == 0 || !(isEnter(sym) || directionOf(sym))) return true;
  if (!isSideways(sym)) return false;
  if (flags.strip.any()) return true;
  const FocusName focus = focusOf(flags);
  return !flags.videoPlaying && (focus == FocusName::Movie || focus == FocusName::Seek);
}

KeyResult KeyInput::moveDirection(Direction direction, const NavFlags& flags) const {
  const FocusName focus = focusOf(flags);
  const bool onStrip = focus == FocusName::Tv || focus == FocusName::Poster;
  if (flags.chooserOpen || onStrip) return {.effect = KeyEffect::Move, .direction = direction};
  const bool steps = focus == FocusName::Seek || (focus == FocusName::Music && !flags.strip.any());
  if (!steps || flags.settingsOpen) return {};
  if (direction == Direction::Left) return {.code = NavCode::SeekBackward};
  return {.code = direction == Direction::Right ? NavCode::SeekForward : NavCode::None};
}

KeyResult KeyInput::pressAndMove(Direction direction, const NavFlags& flags, Uint64 nowMs) {
  held_.press(direction, nowMs);
  return moveDirection(direction, flags);
}

/// First presses that mean the same under every focus.
KeyResult KeyInput::globalKey(SDL_Keycode key, const NavFlags& flags) const {
  switch (key) {
    case SDLK_AUDIOPLAY:
      return {.code = NavCode::TogglePause};
    case SDLK_AUDIOREWIND:
      return {.code = NavCode::SeekBackward};
    case SDLK_AUDIOFASTFORWARD:
      return {.code = NavCode::SeekForward};
    case SDLK_APPLICATION:
    case SDLK_MENU:
      return {.code = NavCode::ToggleSettings};
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      if (flags.settingsOpen || flags.anyPage()) return {};
      if (flags.chooserOpen) return {};
      if (!flags.strip.any()) return {.code = NavCode::OpenPosters};
      return {.effect = KeyEffect::Activate};
    case SDLK_AC_HOME:
      // A pause taken with the pause key is ended before anything else can be reached.
      if (flags.homeMode || flags.strip.any() || flags.videoPaused) return {};
      return {.code = NavCode::GoHome, .effect = KeyEffect::GoHome};
    default:
      return {};
  }
}

KeyResult KeyInput::focusedKey(const SDL_KeyboardEvent& key, NavFlags& flags, Uint64 nowMs) {
  const bool down = key.type == SDL_KEYDOWN;
  switch (focusOf(flags)) {
    case FocusName::Home:
    case FocusName::UsersTab:
      if (down) return homeKeyDown(key, flags, nowMs);
      releaseKey(key.keysym.sym);
      return {.effect = KeyEffect::ReleaseHome};
    case FocusName::Movie:
    case FocusName::Seek:
      return down ? movieKeyDown(key, flags, nowMs) : movieKeyUp(key.keysym.sym, flags);
    case FocusName::Music:
      if (down) return musicKeyDown(key);
      break;
    case FocusName::Tv:
    case FocusName::Poster:
      if (down) return posterKeyDown(key, flags, nowMs);
      break;
    default:
      break;
  }
  if (!down) releaseKey(key.keysym.sym);
  return {};
}

KeyResult KeyInput::homeKeyDown(const SDL_KeyboardEvent& key, const NavFlags& flags, Uint64 nowMs) {
  const SDL_Keycode sym = key.keysym.sym;
  switch (sym) {
    case SDLK_AC_SEARCH:
    case SDLK_AUDIOPLAY:
      return {.code = NavCode::VoiceStart};
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      if (key.repeat != 0) return {};
      return {.effect = flags.chooserOpen ? KeyEffect::ConfirmUser : KeyEffect::LeaveHome};
    case SDLK_UP:
    case SDLK_DOWN:
      if (flags.chooserOpen && flags.homeMode)
        return {.effect = KeyEffect::SwitchRoom, .direction = *directionOf(sym)};
      [[fallthrough]];
    case SDLK_LEFT:
    case SDLK_RIGHT:
      return pressAndMove(*directionOf(sym), flags, nowMs);
    default:
      return {};
  }
}

/// The discs over a film, which an open page may bring up.
KeyResult KeyInput::chooserKeyDown(const SDL_KeyboardEvent& key, const NavFlags& flags, Uint64 nowMs) {
  if (isEnter(key.keysym.sym) && key.repeat == 0) return {.effect = KeyEffect::ConfirmUser};
  const auto direction = directionOf(key.keysym.sym);
  return direction ? pressAndMove(*direction, flags, nowMs) : KeyResult{};
}

KeyResult KeyInput::movieKeyDown(const SDL_KeyboardEvent& key, NavFlags& flags, Uint64 nowMs) {
  if (flags.chooserOpen) return chooserKeyDown(key, flags, nowMs);
  const SDL_Keycode sym = key.keysym.sym;
  switch (sym) {
    case SDLK_LEFT:
    case SDLK_RIGHT: {
      keyboardDirections_ = true;
      const bool right = sym == SDLK_RIGHT;
      if (!flags.running() && !flags.strip.any()) {
        return {.code = right ? NavCode::VolumeUpPress : NavCode::VolumeDownPress};
      }
      held_.press(right ? Direction::Right : Direction::Left, nowMs);
      return startSeek(right ? NavCode::SeekForward : NavCode::SeekBackward, flags);
    }
    case SDLK_AUDIOFASTFORWARD:
      return startSeek(NavCode::SeekForward, flags);
    case SDLK_AUDIOREWIND:
      return startSeek(NavCode::SeekBackward, flags);
    case SDLK_UP:
    case SDLK_DOWN: {
      if (flags.videoPaused) return {};
      const bool up = sym == SDLK_UP;
      held_.press(up ? Direction::Up : Direction::Down, nowMs);
      return {.effect = up ? KeyEffect::ClearSeekBar : KeyEffect::None};
    }
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return {.code = key.repeat == 0 ? NavCode::OpenPosters : NavCode::None};
    case SDLK_PRINTSCREEN:
      return {.code = flags.running() ? NavCode::None : NavCode::Snapshot};
    default:
      return {};
  }
}

KeyResult KeyInput::movieKeyUp(SDL_Keycode key, NavFlags& flags) {
  switch (key) {
    case SDLK_LEFT:
    case SDLK_RIGHT:
      if (!flags.seekFocus) {
        return {.code = key == SDLK_RIGHT ? NavCode::VolumeUpRelease : NavCode::VolumeDownRelease};
      }
      releaseKey(key);
      return endSeek(flags);
    case SDLK_AUDIOFASTFORWARD:
    case SDLK_AUDIOREWIND:
      return endSeek(flags);
    default:
      releaseKey(key);
      return {};
  }
}

KeyResult KeyInput::startSeek(NavCode code, NavFlags& flags) const {
  flags.seekFocus = true;
  return {.code = code, .effect = KeyEffect::TouchSeekBar};
}

KeyResult KeyInput::endSeek(NavFlags& flags) {
  if (flags.homeMode || flags.chooserOpen || flags.settingsOpen || flags.strip.any()) return {};
  flags.seekFocus = false;
  updateFocus(flags);
  held_.clear();
  return {.code = NavCode::SeekCommit};
}

/// In a music room up and down step the track, and left and right are dead.
KeyResult KeyInput::musicKeyDown(const SDL_KeyboardEvent& key) {
  switch (key.keysym.sym) {
    case SDLK_LEFT:
    case SDLK_RIGHT:
      keyboardDirections_ = true;
      return {};
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return {.code = NavCode::OpenPosters};
    case SDLK_DOWN:
    case SDLK_AUDIOFASTFORWARD:
      return {.code = NavCode::SeekForward};
    case SDLK_UP:
    case SDLK_AUDIOREWIND:
      return {.code = NavCode::SeekBackward};
    default:
      return {};
  }
}

KeyResult KeyInput::posterKeyDown(const SDL_KeyboardEvent& key, const NavFlags& flags, Uint64 nowMs) {
  const SDL_Keycode sym = key.keysym.sym;
  switch (sym) {
    case SDLK_AC_SEARCH:
      return {.code = NavCode::VoiceStart};
    case SDLK_AC_BACK:
      return {.effect = KeyEffect::Back};
    case SDLK_ESCAPE:
      return {.code = NavCode::ClosePosters};
    case SDLK_LEFT:
    case SDLK_RIGHT:
    case SDLK_UP:
    case SDLK_DOWN:
      return pressAndMove(*directionOf(sym), flags, nowMs);
    default:
      if (sym != SDLK_BACKSPACE && (sym < SDLK_SPACE || sym >= SDLK_DELETE)) return {};
      return {.effect = KeyEffect::Type, .character = static_cast<char>(sym)};
  }
}

void KeyInput::releaseKey(SDL_Keycode key) {
  if (const auto direction = directionOf(key)) held_.release(*direction);
}

}  // namespace tavek

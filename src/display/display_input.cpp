// The way of events: from the pump to the screen that has the focus, and from what it answers to what is
// done.
#include <algorithm>
#include <array>
#include <iostream>

#include "base/process_flags.h"
#include "display/display.h"

namespace tavek {
namespace {

struct KeyCode {
  SDL_Keycode key;
  NavCode code;
};

/// First presses that mean the same on every screen.
constexpr std::array globalKeys{
    KeyCode{SDLK_AUDIOPLAY, NavCode::TogglePause},        KeyCode{SDLK_AUDIOREWIND, NavCode::SeekBackward},
    KeyCode{SDLK_AUDIOFASTFORWARD, NavCode::SeekForward}, KeyCode{SDLK_APPLICATION, NavCode::ToggleSettings},
    KeyCode{SDLK_MENU, NavCode::ToggleSettings},
};

}  // namespace

NavCode Display::pollInput() {
  owner_.check();
  const NavCode code = pump();
  tickTheme();
  return code;
}

NavCode Display::pump() {
  const Uint64 now = clock_.ticksMs();
  for (Layer* layer : layers_) carryOut(layer->advance(now));
  if (home_.takeConfirmed()) userChosen_();
  const bool pictureRuns = playback_.videoPlaying() && !playback_.videoPaused() && !playback_.audioItem();
  if (saver_.idle(pictureRuns, now)) startScreensaver();
  followScans();
  updateFocus();
  followTextInput();
  if (endLostSeek()) return NavCode::SeekCommit;
  const NavCode repeated = heldKey(now);
  if (stopSignalled) {
    quitRequested = true;
    return repeated;
  }
  const NavCode code = pumpEvents();
  return code != NavCode::None ? code : repeated;
}

/// Not by SDL_PollEvent: when a pass ends early with a code, that would find nothing in the next one, and the
/// key behind would wait for a whole picture more.
NavCode Display::pumpEvents() {
  SDL_PumpEvents();
  SDL_Event event;
  while (SDL_PeepEvents(&event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) > 0) {
    const NavCode code = handleEvent(event);
    if (code != NavCode::None) return code;
  }
  return NavCode::None;
}

NavCode Display::handleEvent(const SDL_Event& event) {
  const Uint64 now = clock_.ticksMs();
  if (saver_.wakes(event, now)) {
    saver_.touch(now);
    stored_.settings.holdWrites(strip_.any());
    playback_.endSeek();
    updateFocus();
    return NavCode::Wake;
  }
  if (saver_.swallows(event)) return NavCode::None;
  switch (event.type) {
    case SDL_QUIT:
      quitRequested = true;
      return NavCode::Quit;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
      saver_.touch(now);
      return keyEvent(event.key, now);
    default:
      return carryOut(layerWithFocus().event(event, now));
  }
}

NavCode Display::keyEvent(const SDL_KeyboardEvent& event, Uint64 nowMs) {
  const auto press = keys_.take(event, nowMs);
  if (!press) return NavCode::None;
  if (const auto release = playback_.volumeRelease(*press)) return *release;
  updateFocus();
  const FocusFacts facts = focusFacts();
  if (!passesRepeatFilter(*press, facts)) return NavCode::None;
  if (showKeycodesEnabled) printKey(*press);
  Meaning meaning = press->down && !press->repeat ? globalKey(*press, facts, nowMs) : Meaning(Unhandled());
  if (std::holds_alternative<Unhandled>(meaning)) meaning = layerWithFocus().key(*press, facts, nowMs);
  return carryOut(std::move(meaning));
}

/// Held Enter and held directions, but for those that steer the strip or the volume, do not repeat.
bool Display::passesRepeatFilter(const KeyPress& press, const FocusFacts& facts) const {
  if (!press.down || !press.repeat || !(isEnter(press.key) || directionOf(press.key))) return true;
  if (facts.settings) return !isEnter(press.key);
  if (press.key != SDLK_LEFT && press.key != SDLK_RIGHT) return false;
  if (facts.stripAny) return true;
  const FocusName focus = focusOf(facts);
  return !facts.videoPlaying && (focus == FocusName::Movie || focus == FocusName::Seek);
}

Meaning Display::globalKey(const KeyPress& press, const FocusFacts& facts, Uint64 nowMs) {
  if (facts.settings) return keyOverSettings(press.key, facts);
  const auto* entry = std::ranges::find(globalKeys, press.key, &KeyCode::key);
  if (entry != globalKeys.end()) {
    // On the home screen there is nothing to play.
    const bool counts = !facts.homeMode || entry->code == NavCode::ToggleSettings;
    return counts ? Meaning(entry->code) : Meaning(Unhandled());
  }
  if (isEnter(press.key) && !facts.homeMode && !facts.chooserOpen) {
    return facts.stripAny ? strip_.activate(facts, nowMs) : Meaning(NavCode::OpenPosters);
  }
  // A pause taken with the pause key is ended before anything else can be reached.
  const bool mayLeave = !facts.homeMode && !facts.stripAny && !facts.videoPaused;
  return press.key == SDLK_AC_HOME && mayLeave ? Meaning(NavCode::GoHome) : Meaning(Unhandled());
}

/// Nothing plays on unseen under the settings.
Meaning Display::keyOverSettings(SDL_Keycode key, const FocusFacts& facts) {
  const auto* entry = std::ranges::find(globalKeys, key, &KeyCode::key);
  const bool menu = entry != globalKeys.end() && entry->code == NavCode::ToggleSettings;
  if (key == SDLK_AC_HOME && !facts.homeMode) return NavCode::GoHome;
  if (menu || key == SDLK_AC_HOME) settings_.closeSettings();
  return entry != globalKeys.end() || key == SDLK_AC_HOME ? Meaning(Handled()) : Meaning(Unhandled());
}

/// What a meaning asks of the program. A code for the player is handed on.
NavCode Display::carryOut(Meaning meaning) {
  if (const auto* room = std::get_if<OpenRoom>(&meaning)) openRoom(room->folder);
  if (const auto* room = std::get_if<EnterRoom>(&meaning)) enterRoom(room->folder);
  const auto* code = std::get_if<NavCode>(&meaning);
  if (code == nullptr) return NavCode::None;
  if (*code == NavCode::GoHome) {
    goHome(true);
    openChooser();
  }
  // The search by voice comes up here. Over an item that runs, its player opens the settings.
  if (*code != NavCode::ToggleSettings || playback_.videoPlaying()) return *code;
  toggleSettings(false);
  return NavCode::None;
}

Layer& Display::layerWithFocus() {
  const FocusName focus = currentFocus();
  if (saver_.owns(focus)) return saver_;
  if (settings_.isOpen()) return settings_;
  const auto* owner = std::ranges::find_if(layers_, [&](const Layer* layer) { return layer->owns(focus); });
  return owner != layers_.end() ? **owner : playback_;
}

void Display::updateFocus() {
  const FocusName next = currentFocus();
  if (next == focus_) return;
  if (focusModeEnabled) std::cout << "[FOCUS] " << focusText(next) << std::endl;
  const bool startsSeek =
      next == FocusName::Seek && (focus_ == FocusName::Movie || focus_ == FocusName::Music);
  focus_ = next;
  // The key that started a seek goes on repeating.
  if (startsSeek) return;
  keys_.clear();
  if (next != FocusName::Seek) playback_.endSeek();
}

/// A seek key whose release was eaten by a change of focus is let go; true if that ended a seek.
bool Display::endLostSeek() {
  if (!keys_.releaseLost()) return false;
  keys_.clear();
  if (focus_ != FocusName::Seek) return false;
  playback_.endSeek();
  updateFocus();
  return true;
}

NavCode Display::heldKey(Uint64 nowMs) {
  const FocusFacts facts = focusFacts();
  Layer& layer = layerWithFocus();
  if (!layer.repeats(facts)) return NavCode::None;
  const auto direction = keys_.repeatDue(nowMs);
  return direction ? carryOut(layer.move(*direction, facts, nowMs)) : NavCode::None;
}

FocusFacts Display::focusFacts() const {
  return {.saverActive = saver_.active(),
          .settings = settings_.focus(),
          .homeMode = home_.homeMode(),
          .chooserOpen = home_.chooserOpen(),
          .roomKind = roomKind_,
          .audioItem = playback_.audioItem(),
          .stripShown = strip_.shown(),
          .stripAny = strip_.any(),
          .seekFocus = playback_.seekFocus(),
          .videoPlaying = playback_.videoPlaying(),
          .videoPaused = playback_.videoPaused()};
}

/// While it is on, some systems show a keyboard of their own.
void Display::followTextInput() {
  if (!usable() || settings_.wantsText() == (SDL_IsTextInputActive() == SDL_TRUE)) return;
  settings_.wantsText() ? SDL_StartTextInput() : SDL_StopTextInput();
}

void Display::discardInput() {
  SDL_PumpEvents();
  // Keys that come up are still to be seen to do so.
  SDL_FlushEvent(SDL_KEYDOWN);
  SDL_FlushEvent(SDL_TEXTINPUT);
}

}  // namespace tavek

#include "display/key_input.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/process_flags.h"

namespace tavek {
namespace {

SDL_Event key(SDL_Keycode sym, bool down, bool repeat = false) {
  SDL_Event event{};
  event.type = down ? SDL_KEYDOWN : SDL_KEYUP;
  event.key.type = event.type;
  event.key.keysym.sym = sym;
  event.key.repeat = repeat ? 1 : 0;
  return event;
}

NavFlags paused() {
  NavFlags flags;
  flags.videoPlaying = false;
  flags.videoPaused = true;
  return flags;
}
NavFlags strip() {
  NavFlags flags;
  flags.videoPlaying = false;
  flags.strip.visible = true;
  return flags;
}
NavFlags home() {
  NavFlags flags;
  flags.videoPlaying = false;
  flags.homeMode = true;
  return flags;
}
NavFlags music() {
  NavFlags flags;
  flags.roomKind = MediaKind::Music;
  flags.audioItem = true;
  return flags;
}
NavFlags settings() {
  NavFlags flags;
  flags.settingsOpen = true;
  return flags;
}

TEST(KeyInput, GivesEachKeyItsCodeUnderEachFocus) {
  using enum NavCode;
  struct Row {
    SDL_Keycode sym;
    NavCode running, paused, strip, home, music, settings;
  };
  const Row rows[] = {
      {SDLK_AUDIOPLAY, TogglePause, TogglePause, TogglePause, VoiceStart, TogglePause, TogglePause},
      {SDLK_LEFT, SeekBackward, VolumeDownPress, None, None, None, None},
      {SDLK_RIGHT, SeekForward, VolumeUpPress, None, None, None, None},
      {SDLK_UP, None, None, None, None, SeekBackward, None},
      {SDLK_DOWN, None, None, None, None, SeekForward, None},
      {SDLK_AUDIOREWIND, SeekBackward, SeekBackward, SeekBackward, None, SeekBackward, SeekBackward},
      {SDLK_AUDIOFASTFORWARD, SeekForward, SeekForward, SeekForward, None, SeekForward, SeekForward},
      {SDLK_RETURN, OpenPosters, OpenPosters, None, None, OpenPosters, None},
      {SDLK_KP_ENTER, OpenPosters, OpenPosters, None, None, OpenPosters, None},
      {SDLK_MENU, ToggleSettings, ToggleSettings, ToggleSettings, ToggleSettings, ToggleSettings,
       ToggleSettings},
      {SDLK_AC_HOME, GoHome, None, None, None, GoHome, GoHome},
      {SDLK_ESCAPE, None, None, ClosePosters, None, None, None},
      {SDLK_AC_SEARCH, None, None, VoiceStart, VoiceStart, None, None},
      {SDLK_PRINTSCREEN, None, Snapshot, None, None, None, None},
      {SDLK_VOLUMEUP, None, None, None, None, None, None},
      {SDLK_q, None, None, None, None, None, None},
  };
  for (const Row& row : rows) {
    const std::pair<NavFlags, NavCode> columns[] = {{{}, row.running},    {paused(), row.paused},
                                                    {strip(), row.strip}, {home(), row.home},
                                                    {music(), row.music}, {settings(), row.settings}};
    for (const auto& [flags, code] : columns) {
      KeyInput input;
      NavFlags now = flags;
      const KeyResult result = input.handle(key(row.sym, true), now, 1000);
      EXPECT_EQ(result.code, code) << SDL_GetKeyName(row.sym) << " in " << focusText(focusOf(flags));
      EXPECT_TRUE(result.active);
    }
  }
}

TEST(KeyInput, LeavesToTheScreensWhatIsTheirs) {
  using enum KeyEffect;
  NavFlags chooser = home();
  chooser.chooserOpen = true;
  NavFlags series = strip();
  series.roomKind = MediaKind::Series;
  const struct {
    NavFlags flags;
    SDL_Keycode sym;
    KeyEffect effect;
  } cases[] = {
      {chooser, SDLK_UP, SwitchRoom},
      {chooser, SDLK_DOWN, SwitchRoom},
      {chooser, SDLK_LEFT, Move},
      {chooser, SDLK_RETURN, ConfirmUser},
      {chooser, SDLK_KP_ENTER, ConfirmUser},
      {home(), SDLK_LEFT, None},
      {home(), SDLK_RETURN, LeaveHome},
      {strip(), SDLK_RIGHT, Move},
      {strip(), SDLK_UP, Move},
      {strip(), SDLK_RETURN, Activate},
      {series, SDLK_KP_ENTER, Activate},
      {series, SDLK_AC_BACK, Back},
      {strip(), SDLK_b, Type},
      {strip(), SDLK_BACKSPACE, Type},
      {music(), SDLK_LEFT, None},
      {strip(), SDLK_F1, None},
      {paused(), SDLK_RETURN, None},
  };
  for (const auto& c : cases) {
    KeyInput input;
    NavFlags flags = c.flags;
    EXPECT_EQ(input.handle(key(c.sym, true), flags, 1000).effect, c.effect)
        << SDL_GetKeyName(c.sym) << " in " << focusText(focusOf(c.flags));
  }
}

TEST(KeyInput, TellsRepeatsAndReleases) {
  struct Step {
    SDL_Event event;
    NavCode code;
  };
  const bool down = true;
  const bool up = false;
  const bool again = true;
  const struct {
    const char* what;
    NavFlags flags;
    std::vector<Step> steps;
  } cases[] = {
      {"a toggle that is sent twice counts once",
       {},
       {{key(SDLK_AUDIOPLAY, down), NavCode::TogglePause},
        {key(SDLK_AUDIOPLAY, down), NavCode::None},
        {key(SDLK_AUDIOPLAY, down, again), NavCode::None},
        {key(SDLK_AUDIOPLAY, up), NavCode::None},
        {key(SDLK_AUDIOPLAY, down), NavCode::TogglePause}}},
      {"a running film drops the repeats of a seek key",
       {},
       {{key(SDLK_RIGHT, down), NavCode::SeekForward},
        {key(SDLK_RIGHT, down, again), NavCode::None},
        {key(SDLK_RIGHT, up), NavCode::SeekCommit}}},
      {"a pause takes them as volume",
       paused(),
       {{key(SDLK_RIGHT, down), NavCode::VolumeUpPress},
        {key(SDLK_RIGHT, down, again), NavCode::VolumeUpPress},
        {key(SDLK_RIGHT, up), NavCode::VolumeUpRelease}}},
      {"and left as volume down",
       paused(),
       {{key(SDLK_LEFT, down), NavCode::VolumeDownPress}, {key(SDLK_LEFT, up), NavCode::VolumeDownRelease}}},
      {"Enter never repeats", {}, {{key(SDLK_RETURN, down, again), NavCode::None}}},
      {"Enter never repeats on the strip", strip(), {{key(SDLK_RETURN, down, again), NavCode::None}}},
      {"the media keys commit on release",
       {},
       {{key(SDLK_AUDIOREWIND, down), NavCode::SeekBackward},
        {key(SDLK_AUDIOREWIND, down, again), NavCode::SeekBackward},
        {key(SDLK_AUDIOREWIND, up), NavCode::SeekCommit}}},
  };
  for (const auto& c : cases) {
    KeyInput input;
    NavFlags flags = c.flags;
    for (const Step& step : c.steps) {
      input.updateFocus(flags);
      EXPECT_EQ(input.handle(step.event, flags, 1000).code, step.code)
          << c.what << ", step " << &step - c.steps.data();
    }
  }
}

TEST(KeyInput, RepeatsAHeldSeekByItself) {
  KeyInput input;
  NavFlags flags;
  input.updateFocus(flags);
  EXPECT_EQ(input.handle(key(SDLK_LEFT, true), flags, 1000).effect, KeyEffect::TouchSeekBar);
  input.updateFocus(flags);
  EXPECT_EQ(input.focus(), FocusName::Seek);
  std::vector<Uint64> repeats;
  for (Uint64 now = 1000; now < 1700; now += 5) {
    if (input.repeats(flags, now).code == NavCode::SeekBackward) repeats.push_back(now);
  }
  EXPECT_EQ(repeats, (std::vector<Uint64>{1275, 1405, 1535, 1665}));
}

TEST(KeyInput, AClosedWindowQuits) {
  KeyInput input;
  NavFlags flags;
  SDL_Event close{};
  close.type = SDL_QUIT;
  EXPECT_EQ(input.handle(close, flags, 0).code, NavCode::Quit);
  EXPECT_TRUE(quitRequested);
  quitRequested = false;
}

}  // namespace
}  // namespace tavek

#include "display/settings/settings.h"

#include <algorithm>
#include <string>

#include "base/text.h"
#include "display/toolkit/key_input.h"
#include "display/toolkit/rows.h"
#include "display/toolkit/shapes.h"

namespace tavek {
namespace {

constexpr int tabHeight = 44;
constexpr int tabGap = 6;
constexpr int contentTop = 60;
constexpr Colour background = rgba(34, 34, 34);

const std::array<std::string, 5> tabLabels = {"Users", "Audio", "Bluetooth", "Network", "Hue"};

constexpr int indexOf(SettingsTab tab) {
  return static_cast<int>(tab);
}

std::string rememberedName(SettingsTab tab) {
  return toLower(tabLabels[static_cast<std::size_t>(tab)]);
}

SettingsTab tabOf(const std::string& name) {
  for (std::size_t tab = 0; tab < tabLabels.size(); ++tab) {
    if (toLower(tabLabels[tab]) == toLower(name)) return static_cast<SettingsTab>(tab);
  }
  return SettingsTab::Audio;
}

}  // namespace

Settings::Settings(const Stored& stored, std::function<void()> usersChanged)
    : settings_(stored.settings),
      users_(stored.users, std::move(usersChanged)),
      audio_(stored.settings),
      hue_(stored.devices) {}

std::optional<FocusName> Settings::focus() const {
  if (!open_) return {};
  if (!focused_) return FocusName::Settings;
  return static_cast<FocusName>(static_cast<std::int32_t>(FocusName::UsersTab) + indexOf(tab_));
}

// --- Opening and closing ---

void Settings::openSettings(bool playing) {
  open_ = true;
  focused_ = false;
  tabRects_.clear();
  showTab(tabOf(settings_.settingsTab().value_or("")));
  pausedPlayback_ = false;
  if (playing) pausePlayback();
}

void Settings::pausePlayback() {
  if (!open_ || pauseToggle_) return;
  pausedPlayback_ = pauseToggle_ = true;
}

void Settings::closeSettings() {
  if (!open_) return;
  open_ = false;
  page().close();
  // A pause that nobody has heard of yet is not to be.
  if (pausedPlayback_) pauseToggle_ = !pauseToggle_;
  pausedPlayback_ = false;
}

void Settings::selectTab(SettingsTab tab) {
  if (tab == tab_) return page().reload();
  page().close();
  showTab(tab);
  settings_.setSettingsTab(rememberedName(tab));
}

void Settings::showTab(SettingsTab tab) {
  tab_ = cursor_ = tab;
  focused_ = false;
  page().open();
}

void Settings::enterTab() {
  selectTab(cursor_);
  focused_ = true;
}

/// A page that stands for a device gives way to Audio first.
void Settings::back() {
  if (page().closeList()) return;
  if (tab_ == SettingsTab::Users || tab_ == SettingsTab::Audio) return closeSettings();
  page().close();
  showTab(SettingsTab::Audio);
}

// --- Keys ---

Meaning Settings::key(const KeyPress& press, const FocusFacts& /*facts*/, Uint64 nowMs) {
  if (!press.down) return Handled();
  return focused_ ? pageKey(press, nowMs) : tabsKey(press);
}

Meaning Settings::tabsKey(const KeyPress& press) {
  switch (press.key) {
    case SDLK_LEFT:
      moveCursor(-1);
      break;
    case SDLK_RIGHT:
      moveCursor(+1);
      break;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      if (!press.repeat) enterTab();
      break;
    case SDLK_BACKSPACE:
    case SDLK_AC_BACK:
      if (!press.repeat) back();
      break;
    default:
      break;
  }
  return Handled();
}

void Settings::moveCursor(int delta) {
  cursor_ = static_cast<SettingsTab>(std::clamp(indexOf(cursor_) + delta, 0, static_cast<int>(tabCount) - 1));
}

Meaning Settings::pageKey(const KeyPress& press, Uint64 nowMs) {
  switch (page().key(press, nowMs)) {
    case PageAct::Handled:
      break;
    case PageAct::Unhandled:
      if (press.key == SDLK_BACKSPACE || press.key == SDLK_AC_BACK) focused_ = false;
      break;
    case PageAct::PreviousTab:
      selectTab(static_cast<SettingsTab>(std::max(0, indexOf(tab_) - 1)));
      break;
    case PageAct::ToAudio:
      page().close();
      showTab(SettingsTab::Audio);
      break;
    case PageAct::Close:
      closeSettings();
      break;
    case PageAct::SoundMode:
      return NavCode::AudioModeChanged;
  }
  return Handled();
}

Meaning Settings::event(const SDL_Event& event, Uint64 nowMs) {
  if (event.type == SDL_TEXTINPUT && wantsText()) page().text(event.text.text, nowMs);
  if (event.type == SDL_MOUSEBUTTONDOWN && event.button.button == SDL_BUTTON_LEFT)
    click({event.button.x, event.button.y}, nowMs);
  return Handled();
}

void Settings::click(SDL_Point point, Uint64 nowMs) {
  const auto tab = std::ranges::find_if(
      tabRects_, [&](const SDL_Rect& rect) { return SDL_PointInRect(&point, &rect) == SDL_TRUE; });
  if (tab != tabRects_.end()) {
    cursor_ = static_cast<SettingsTab>(tab - tabRects_.begin());
    focused_ = false;
  } else if (!tabRects_.empty() && page().click(point, nowMs)) {
    focused_ = true;
  }
}

Meaning Settings::advance(Uint64 nowMs) {
  if (open_) page().advance(nowMs);
  return Unhandled();
}

// --- Drawing ---

void Settings::draw(const FrameContext& frame, const FocusFacts& /*facts*/) {
  if (!open_ || frame.renderer == nullptr) return;
  const BlendScope blend(frame.renderer);
  fillRect(frame.renderer, {0, 0, frame.width, frame.height}, background);
  const TabRow tabs{.renderer = frame.renderer,
                    .font = frame.baseFont,
                    .area = {0, 0, frame.width, tabHeight},
                    .gap = tabGap,
                    .labels = tabLabels};
  drawTabRow(tabs, indexOf(focused_ ? tab_ : cursor_));
  tabRects_ = tabRects(tabs.area, tabs.margin, tabs.gap, static_cast<int>(tabCount));
  page().draw(frame, contentTop, focused_);
}

}  // namespace tavek

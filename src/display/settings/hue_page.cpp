#include "display/settings/hue_page.h"

#include <algorithm>
#include <utility>

#include "display/toolkit/list.h"
#include "display/toolkit/rows.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr int margin = 24;
constexpr int rowHeight = 54;
constexpr int columnGap = 16;
constexpr int saveHeight = 44;
constexpr int saveOffset = 68;     // from the lower edge
constexpr int statusOffset = 104;  // from the lower edge
constexpr Colour saveColour = rgba(32, 136, 72);
constexpr Colour saveFocusColour = rgba(48, 176, 96);
constexpr Colour greyText = rgba(200, 200, 200);
constexpr Colour statusText = rgba(210, 210, 210);
constexpr Colour markColour = rgba(200, 200, 200, 220);
constexpr const char* offHint = "Enable Hue Lights to configure bridge settings.";

struct Place {
  HueRow row;
  int y;
  int column;  ///< 0 is the whole width
};
constexpr Place places[] = {
    {HueRow::Enabled, 32, 0},    {HueRow::Bridge, 102, 0},     {HueRow::User, 172, 0},
    {HueRow::Group, 242, 0},     {HueRow::PlayScene, 312, 1},  {HueRow::PauseScene, 312, 2},
    {HueRow::PlayAlert, 382, 1}, {HueRow::PauseAlert, 382, 2},
};

bool isList(HueRow row) {
  return row >= HueRow::Group && row <= HueRow::PauseScene;
}

SDL_Rect rectOf(const Place& place, int width, int top) {
  const int column = (width - 64) / 2;
  const int x = place.column == 2 ? margin + column + columnGap : margin;
  return {x, top + place.y, place.column == 0 ? width - 2 * margin : column, rowHeight};
}

/// How far the rows go up on a low screen, so that the focused one is seen.
int scrollOf(const HueForm& form, int top, int bottom) {
  const auto* place = std::ranges::find(places, form.focusRow(), &Place::row);
  return place == std::end(places) || !form.enabled() ? 0
                                                      : std::max(0, top + place->y + rowHeight + 8 - bottom);
}

void drawRows(const FrameContext& frame, const HueForm& form, int top, bool focused) {
  const int labelWidth = textSize(frame.baseFont, form.label(HueRow::PauseScene)).x;
  for (const Place& place : places) {
    if (!form.enabled() && place.row != HueRow::Enabled) continue;
    const SDL_Rect rect = rectOf(place, frame.width, top);
    const std::string value = fitText(frame.baseFont, form.value(place.row), rect.w - labelWidth - 72);
    drawFieldRow({.row = {.renderer = frame.renderer,
                          .font = frame.baseFont,
                          .rect = rect,
                          .label = form.label(place.row),
                          .shadow = rgba(0, 0, 0, 150)},
                  .value = value,
                  .focused = focused && form.focusRow() == place.row,
                  .isList = isList(place.row)});
  }
  if (!form.enabled())
    drawText(frame.renderer, frame.baseFont, fitText(frame.baseFont, offHint, frame.width - 2 * margin),
             margin, top + 110, greyText, rgba(0, 0, 0, 150));
}

void drawSave(const FrameContext& frame, const HueForm& form, bool focused) {
  const SDL_Rect button{margin, frame.height - saveOffset, frame.width - 2 * margin, saveHeight};
  const bool lit = focused && form.focusRow() == HueRow::Save;
  fillRect(frame.renderer, button, lit ? saveFocusColour : saveColour);
  drawTextCentered(frame.renderer, frame.baseFont, form.label(HueRow::Save), button, theme::white, 1.2);
  drawText(frame.renderer, frame.baseFont, fitText(frame.baseFont, form.status(), button.w), margin,
           frame.height - statusOffset, statusText, rgba(0, 0, 0, 160));
}

void drawOptions(const FrameContext& frame, const HueForm& form, int top) {
  const auto* place = std::ranges::find(places, form.listRow(), &Place::row);
  if (!form.listOpen() || place == std::end(places)) return;
  std::vector<std::string> rows;
  for (const HueOption& option : form.options()) rows.push_back(option.label);
  const DropDownList list{
      .font = frame.baseFont, .rows = rows, .selected = static_cast<int>(form.optionIndex())};
  const ListLayout layout =
      drawList(list, frame.renderer, rectOf(*place, frame.width, top), {0, 0, frame.width, frame.height});
  if (static_cast<std::size_t>(layout.rowCount) >= rows.size()) return;
  const int x = layout.box.x + layout.box.w - 24;
  const SDL_Point size = textSize(frame.baseFont, "v");
  drawText(frame.renderer, frame.baseFont, "^", x, layout.box.y - 10 - size.y / 2, markColour);
  drawText(frame.renderer, frame.baseFont, "v", x, layout.box.y + layout.box.h + 10 - size.y / 2, markColour);
}

}  // namespace

void HuePage::open() {
  const HueSettings settings = devices_.hueSettings();
  form_.open(settings);
  scan_.leave();
  if (!settings.enabled) return;
  form_.say("Scanning bridge...");
  scan_.start([bridge = settings.bridge.value_or(""), user = settings.user.value_or("")](auto& side) {
    side.post(scanHueBridge(bridge, user, side.stop()));
  });
}

PageAct HuePage::key(const KeyPress& press, Uint64 /*nowMs*/) {
  const PageAct act = form_.key(press);
  if (act == PageAct::Close) devices_.setHueSettings(form_.settings());
  return act;
}

void HuePage::advance(Uint64 /*nowMs*/) {
  if (auto scan = scan_.take()) form_.takeScan(std::move(*scan));
}

void HuePage::draw(const FrameContext& frame, int top, bool focused) {
  const int bottom = frame.height - statusOffset;
  const int scrolled = top - scrollOf(form_, top, bottom);
  const SDL_Rect rowsOnly{0, top, frame.width, std::max(0, bottom - top)};
  SDL_RenderSetClipRect(frame.renderer, &rowsOnly);
  drawRows(frame, form_, scrolled, focused);
  SDL_RenderSetClipRect(frame.renderer, nullptr);
  drawSave(frame, form_, focused);
  drawOptions(frame, form_, scrolled);
}

}  // namespace tavek

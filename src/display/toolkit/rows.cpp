#include "display/toolkit/rows.h"

#include <algorithm>

#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr int lineHeight = 2;
constexpr int underlineHeight = 4;
constexpr Colour lineColour = rgba(68, 68, 68);
constexpr Colour tabColour = rgba(15, 15, 15, 220);
constexpr Colour tabLabelColour = rgba(180, 180, 180);
constexpr Colour tabShadow = rgba(0, 0, 0, 130);

void drawRowSwitch(const Row& row, int rightPad, int width, int height, bool on, bool focused) {
  const SDL_Rect& area = row.rect;
  const SDL_Rect place{area.x + area.w - width - rightPad, area.y + (area.h - height) / 2, width, height};
  drawToggle({}, row.renderer, place, on, focused);
}

/// The mark of a row whose value comes from a list.
void drawListMark(const Row& row, const SDL_Rect& box) {
  const int centre = std::max(box.x + box.w - 22, box.x + 6) + 6;
  const int top = row.rect.y + row.rect.h / 2 - 3;
  setDrawColour(row.renderer, row.text);
  for (int line = 0; line < 6; ++line) {
    const int half = 6 - line;
    SDL_RenderDrawLine(row.renderer, centre - half, top + line, centre + half, top + line);
  }
}

}  // namespace

std::vector<SDL_Rect> tabRects(const SDL_Rect& area, int margin, int gap, int count) {
  std::vector<SDL_Rect> tabs;
  if (count <= 0) return tabs;
  const int room = std::max(0, area.w - 2 * margin - (count - 1) * gap);
  int x = area.x + margin;
  for (int tab = 0; tab < count; ++tab) {
    const int width = room / count + (tab < room % count ? 1 : 0);
    tabs.push_back({x, area.y, width, area.h});
    x += width + gap;
  }
  return tabs;
}

void drawTabRow(const TabRow& row, int selected) {
  if (row.renderer == nullptr) return;
  const BlendScope blend(row.renderer);
  const SDL_Rect& area = row.area;
  fillRect(row.renderer, {area.x + row.margin, area.y + area.h, area.w - 2 * row.margin, lineHeight},
           lineColour);
  const int count = static_cast<int>(row.labels.size());
  const std::vector<SDL_Rect> tabs = tabRects(area, row.margin, row.gap, count);
  for (int tab = 0; tab < count; ++tab) {
    const auto index = static_cast<std::size_t>(tab);
    const SDL_Rect& place = tabs[index];
    const bool isSelected = tab == selected;
    fillRect(row.renderer, place, tabColour);
    if (isSelected) {
      fillRect(row.renderer, {place.x, place.y + place.h - underlineHeight, place.w, underlineHeight},
               theme::accent);
    }
    drawTextCentered(row.renderer, row.font, fitText(row.font, row.labels[index], place.w - 4), place,
                     isSelected ? theme::white : tabLabelColour, 1.0, tabShadow);
  }
}

ValueLayout valueLayout(const SDL_Rect& row, int labelWidth, int valueWidth) {
  const int left = row.x + labelWidth + 24;
  const SDL_Rect box{left, row.y + 6, std::max(0, row.x + row.w - 12 - left), std::max(0, row.h - 12)};
  const int x = box.w > valueWidth + 12 ? box.x + box.w - 6 - valueWidth : box.x + 6;
  return {box, {x, row.y + 10}};
}

SDL_Point drawLabeledRow(const Row& row) {
  drawText(row.renderer, row.font, row.label, row.rect.x + 12, row.rect.y + 10, row.text, row.shadow);
  return textSize(row.font, row.label);
}

void drawValueRow(const FieldRow& field, int labelWidth) {
  const Row& row = field.row;
  const std::string value = field.value.empty() ? "(none)" : field.value;
  const SDL_Point size = textSize(row.font, value);
  const int markWidth = field.isList ? 24 : 0;
  const ValueLayout layout = valueLayout(row.rect, labelWidth, size.x + markWidth);
  drawPanel(row.renderer, layout.box, field.focused);
  drawText(row.renderer, row.font, value, layout.text.x, layout.text.y, row.text, row.shadow);
  if (field.isList) {
    drawListMark(row, layout.box);
  } else {
    drawCaret(row.renderer, layout.box, layout.text.x + size.x, size.y, field.focused);
  }
}

void drawFieldRow(const FieldRow& field) {
  fillPanel(field.row.renderer, field.row.rect);
  const SDL_Point label = drawLabeledRow(field.row);
  if (field.isToggle) {
    drawRowSwitch(field.row, 12, 60, 28, field.on, field.focused);
  } else {
    drawValueRow(field, label.x);
  }
}

void drawToggleRow(const ToggleRow& toggle) {
  fillPanel(toggle.row.renderer, toggle.row.rect);
  drawLabeledRow(toggle.row);
  drawRowSwitch(toggle.row, toggle.rightPad, toggle.switchWidth, toggle.switchHeight, toggle.on,
                toggle.focused);
}

}  // namespace tavek

#include "display/toolkit/list.h"

#include <algorithm>

#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr int minimumWidth = 40;
constexpr SDL_Point textOffset{10, 6};

}  // namespace

ListLayout listLayout(const DropDownList& list, const SDL_Rect& anchor, const SDL_Rect& bounds) {
  const int total = static_cast<int>(list.rows.size());
  const int shown = std::min(total, list.visibleRows);
  if (shown <= 0) return {};
  const int first = std::clamp(list.selected - list.visibleRows / 2, 0, total - shown);

  const int right = bounds.x + bounds.w - list.style.margin;
  const int bottom = bounds.y + bounds.h - list.style.margin;
  const int height = shown * list.style.rowHeight;
  const int width = std::max(minimumWidth, std::min(anchor.w, right - anchor.x));
  const int x = std::max(bounds.x, std::min(anchor.x, right - width));
  const int below = anchor.y + anchor.h;
  const int y = below + height <= bottom ? below : std::max(bounds.y, anchor.y - height);
  return {{x, y, width, height}, first, shown};
}

ListLayout drawList(const DropDownList& list, SDL_Renderer* renderer, const SDL_Rect& anchor,
                    const SDL_Rect& bounds) {
  const ListLayout layout = listLayout(list, anchor, bounds);
  if (renderer == nullptr || layout.rowCount == 0) return layout;
  const ListStyle& style = list.style;
  const SDL_Rect& box = layout.box;
  const BlendScope blend(renderer);
  fillRect(renderer, box, style.fill);
  for (int line = 0; line < layout.rowCount; ++line) {
    const int index = layout.firstRow + line;
    const bool isSelected = index == list.selected;
    const SDL_Rect row{box.x, box.y + line * style.rowHeight, box.w, style.rowHeight};
    if (isSelected) fillRect(renderer, row, style.highlightFill);
    const std::string text =
        fitText(list.font, list.rows[static_cast<std::size_t>(index)], box.w - 2 * textOffset.x);
    drawText(renderer, list.font, text, row.x + textOffset.x, row.y + textOffset.y,
             isSelected ? style.highlightText : style.text, style.shadow);
  }
  outlineRect(renderer, box, style.frame);
  return layout;
}

}  // namespace tavek

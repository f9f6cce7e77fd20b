#include "display/settings/keyboard_view.h"

#include <algorithm>
#include <string>

#include "base/text.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr Colour panelColour = rgba(18, 18, 18, 230);
constexpr Colour keyColour = rgba(40, 40, 40, 230);
constexpr Colour shiftColour = rgba(120, 120, 120, 230);
constexpr Colour labelColour = rgba(210, 210, 210);
constexpr Colour labelShadow = rgba(0, 0, 0, 120);

/// The base font, or a smaller one where the label would not fit the key.
TTF_Font* labelFont(const FrameContext& frame, const std::string& label, const SDL_Rect& key) {
  constexpr int smallest = 8;
  const auto fits = [&](TTF_Font* font) {
    const SDL_Point size = textSize(font, label);
    return size.x <= key.w - 4 && size.y <= key.h;
  };
  if (frame.baseFont == nullptr || fits(frame.baseFont)) return frame.baseFont;
  for (int size = TTF_FontHeight(frame.baseFont) * 3 / 4; size >= smallest; --size) {
    TTF_Font* font = regularFont(size);
    if (font == nullptr) break;
    if (fits(font) || size == smallest) return font;
  }
  return frame.baseFont;
}

void drawBackArrow(SDL_Renderer* renderer, const SDL_Rect& key, Colour colour) {
  const int barb = std::min(key.w, key.h) / 4;
  const int left = key.x + key.w / 4;
  const int middle = key.y + key.h / 2;
  setDrawColour(renderer, colour);
  SDL_RenderDrawLine(renderer, left, middle, key.x + key.w * 3 / 4, middle);
  SDL_RenderDrawLine(renderer, left, middle, left + barb, middle - barb);
  SDL_RenderDrawLine(renderer, left, middle, left + barb, middle + barb);
}

}  // namespace

void drawKeyboard(const FrameContext& frame, const ScreenKeyboard& keyboard, const KeyboardLayout& layout,
                  bool focused, bool lowerCaseLabels) {
  if (frame.renderer == nullptr) return;
  const BlendScope blend(frame.renderer);
  fillRect(frame.renderer, layout.panel, panelColour);
  for (std::size_t row = 0; row < layout.keys.size(); ++row) {
    for (std::size_t column = 0; column < layout.keys[row].size(); ++column) {
      const ScreenKey& key = keyboardRows()[row][column];
      const SDL_Rect& rect = layout.keys[row][column];
      const bool current = focused && keyboard.cursor() == KeyPlace{row, column};
      const bool lit = key.kind == ScreenKeyKind::Shift && keyboard.shift();
      const Colour text = current ? theme::white : labelColour;
      fillRect(frame.renderer, rect, current ? theme::accent : lit ? shiftColour : keyColour);
      if (key.kind == ScreenKeyKind::Backspace) {
        drawBackArrow(frame.renderer, rect, text);
        continue;
      }
      const bool lower = lowerCaseLabels && key.kind == ScreenKeyKind::Character;
      const std::string label = lower ? toLower(key.label) : std::string(key.label);
      drawTextCentered(frame.renderer, labelFont(frame, label, rect), label, rect, text, 1.0, labelShadow);
    }
  }
}

}  // namespace tavek

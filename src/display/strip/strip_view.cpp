#include "display/strip/strip_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "display/strip/strip_layout.h"
#include "display/toolkit/fade.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
#include "display/toolkit/texture.h"

namespace tavek {
namespace {

constexpr int frameWidth = 5;
constexpr Colour pillFill = rgba(17, 17, 17);
constexpr Colour errorText = rgba(255, 128, 128);

void drawPoster(SDL_Renderer* renderer, const Poster& poster, const SDL_Rect& rect, double strength) {
  SDL_Texture* texture = poster.texture.get();
  SDL_SetTextureAlphaMod(texture, fadedAlpha(strength));
  copyTexture(renderer, texture, rect);
  SDL_SetTextureAlphaMod(texture, 255);
}

void drawFrame(SDL_Renderer* renderer, SDL_Rect rect) {
  for (int i = 0; i < frameWidth && rect.w > 0 && rect.h > 0; ++i) {
    outlineRect(renderer, rect, theme::white);
    rect = {rect.x + 1, rect.y + 1, rect.w - 2, rect.h - 2};
  }
}

/// A text between two round ends, above what begins at `below`. Gives its own upper edge.
int drawPill(const FrameContext& frame, const std::string& text, Colour colour, double below,
             double strength) {
  TTF_Font* font = thinFont(32);
  if (font == nullptr) font = frame.baseFont;
  const std::string line = fitText(font, text, std::max(frame.width - 52, 1));
  const SDL_Point size = textSize(font, line);
  if (size.x < 1) return static_cast<int>(below);
  // Odd, as a disc has a middle row.
  const int height = (size.y + 24) | 1;
  const int width = size.x + 52;
  const int top = std::max(static_cast<int>(below) - height - 10, 0);
  const int left = (frame.width - width) / 2;
  const int radius = height / 2;
  const Colour fill = scaleAlpha(pillFill, strength);
  fillRect(frame.renderer, {left + radius, top, width - 2 * radius, height}, fill);
  drawDisc(frame.renderer, left + radius, top + radius, radius, 0, fill);
  drawDisc(frame.renderer, left + width - radius, top + radius, radius, 0, fill);
  drawText(frame.renderer, font, line, left + 26, top + 12, scaleAlpha(colour, strength));
  return top;
}

}  // namespace

void drawStrip(const FrameContext& frame, const StripState& strip, const Posters& posters,
               const StripTexts& texts) {
  const BlendScope blending(frame.renderer);
  const double reveal = stripReveal(strip, frame.nowMs);
  const double alpha = strip.visible ? 1 : 0;
  const double top = stripTop(frame.height, reveal);
  const auto& list = posters.list();
  const std::size_t first = posters.stripScroll();

  std::array<int, postersOnScreen> widths{};
  const std::size_t shown = std::min(list.size() - std::min(first, list.size()), postersOnScreen);
  for (std::size_t i = 0; i < shown; ++i) widths[i] = list[first + i].width;
  const int selected = strip.visible ? posters.selectedPoster() - static_cast<int>(first) : -1;
  const StripLayout layout = layoutStrip(std::span(widths).first(shown), selected, frame.width, top);

  const StripSlot* selectedSlot = nullptr;
  for (std::size_t i = 0; i < layout.count; ++i) {
    const StripSlot& slot = layout.slots[i];
    if (static_cast<int>(slot.index) == selected) {
      selectedSlot = &slot;
      continue;
    }
    const Poster& poster = list[first + slot.index];
    drawPoster(frame.renderer, poster, slot.rect, alpha);
    if (poster.watched) drawCornerMark(frame.renderer, slot.rect, alpha);
  }
  if (selectedSlot != nullptr) {
    const Poster& poster = list[first + selectedSlot->index];
    drawPoster(frame.renderer, poster, selectedSlot->rect, alpha);
    drawFrame(frame.renderer, selectedSlot->rect);
    if (poster.watched) drawCornerMark(frame.renderer, selectedSlot->rect, alpha);
  }
  double below = top;
  if (!texts.label.empty()) below = drawPill(frame, texts.label, theme::accent, below, alpha);
  if (!texts.error.empty()) drawPill(frame, texts.error, errorText, below, reveal);
}

}  // namespace tavek

#include "display/status_lines.h"

#include <algorithm>
#include <utility>

#include "display/toolkit/fonts.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr Uint64 statusMs = 4000;
constexpr Colour textColour = 0xE6FFFFFF;
constexpr Colour shadowColour = 0xC8000000;

TTF_Font* fontFor(const FrameContext& frame, bool homeMode) {
  if (!homeMode) return frame.baseFont;
  TTF_Font* font = regularFont(frame.height > 659 ? std::clamp(frame.height / 30, 22, 40) : 22);
  return font != nullptr ? font : frame.baseFont;
}

}  // namespace

void StatusLines::showStatus(std::string text, Uint64 nowMs) {
  statusLine_ = std::move(text);
  statusLineAt_ = nowMs;
}

void StatusLines::draw(const FrameContext& frame, bool homeMode) {
  if (frame.nowMs >= statusLineAt_ + statusMs) statusLine_.clear();
  if (frame.renderer == nullptr || frame.baseFont == nullptr || statusLine_.empty()) return;
  TTF_Font* font = fontFor(frame, homeMode);
  const int margin = frame.width < 640 ? 16 : std::min(frame.width / 40, 48);
  const std::string text = fitText(font, statusLine_, frame.width - 2 * margin);
  const int x = homeMode ? std::max((frame.width - textSize(font, text).x) / 2, margin) : margin;
  const int y = homeMode ? margin : std::max(frame.height - margin - TTF_FontLineSkip(font), margin);
  drawShadowedText(frame.renderer, font, text, x, y, textColour, shadowColour);
}

}  // namespace tavek

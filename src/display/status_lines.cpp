#include "display/status_lines.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "display/toolkit/fonts.h"
#include "display/toolkit/text.h"
#include "scan/scan_status.h"

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

/// Of a scan, large enough for a screen of its own.
TTF_Font* scanFont(const FrameContext& frame, const std::string& text) {
  constexpr std::string_view scanners[] = {"TMDB ", "FANART ", "[TMDB]", "[FANART]"};
  const auto begins = [&](std::string_view tag) { return text.starts_with(tag); };
  TTF_Font* font =
      std::ranges::any_of(scanners, begins) ? regularFont(std::clamp(frame.height / 14, 28, 72)) : nullptr;
  return font != nullptr ? font : frame.baseFont;
}

}  // namespace

void StatusLines::showStatus(std::string text, Uint64 nowMs) {
  statusLine_ = std::move(text);
  statusLineAt_ = nowMs;
}

void StatusLines::draw(const FrameContext& frame, bool homeMode) {
  if (frame.nowMs >= statusLineAt_ + statusMs) statusLine_.clear();
  if (frame.renderer == nullptr || frame.baseFont == nullptr) return;
  const std::string said = !statusLine_.empty() || !homeMode ? statusLine_ : currentScanStatus();
  if (said.empty()) return;
  TTF_Font* font = fontFor(frame, homeMode);
  const int margin = frame.width < 640 ? 16 : std::min(frame.width / 40, 48);
  const std::string text = fitText(font, said, frame.width - 2 * margin);
  const int x = homeMode ? std::max((frame.width - textSize(font, text).x) / 2, margin) : margin;
  const int y = homeMode ? margin : std::max(frame.height - margin - TTF_FontLineSkip(font), margin);
  drawShadowedText(frame.renderer, font, text, x, y, textColour, shadowColour);
}

bool drawScanScreen(const FrameContext& frame) {
  const std::string said = currentScanStatus();
  if (said.empty() || frame.baseFont == nullptr) return false;
  TTF_Font* font = scanFont(frame, said);
  const int margin = frame.width < 480 ? 24 : std::min(frame.width / 20, 80);
  const std::string text = fitText(font, said, frame.width - 2 * margin);
  const SDL_Point size = textSize(font, text);
  drawShadowedText(frame.renderer, font, text, std::max((frame.width - size.x) / 2, margin),
                   std::max((frame.height - size.y) / 2, margin), textColour, shadowColour);
  return true;
}

}  // namespace tavek

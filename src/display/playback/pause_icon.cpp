#include "display/playback/pause_icon.h"

#include <algorithm>

#include "display/toolkit/shapes.h"

namespace tavek {

PauseIconLayout pauseIconLayout(int width, int height) {
  const int shorter = std::min(width, height);
  const int barHeight = std::clamp(shorter / 12, 28, 110);
  const int barWidth = std::clamp(shorter / 72, 6, 18);
  const SDL_Rect left{(width - 3 * barWidth) / 2, (height - barHeight) / 2, barWidth, barHeight};
  return {left, {left.x + 2 * barWidth, left.y, barWidth, barHeight}};
}

void PauseIcon::setPaused(bool paused, Uint64 nowMs) {
  if (paused != fade_.visible) fade_ = {paused, nowMs};
}

void PauseIcon::draw(const FrameContext& frame, bool wanted) {
  const std::uint8_t alpha = fadedAlpha(advanceFade(fade_, wanted, frame.nowMs));
  if (alpha == 0) return;
  const PauseIconLayout layout = pauseIconLayout(frame.width, frame.height);
  const BlendScope blend(frame.renderer);
  for (const SDL_Rect& bar : {layout.left, layout.right}) {
    outlineRect(frame.renderer, bar, withAlpha(theme::black, alpha));
  }
  for (const SDL_Rect& bar : {layout.left, layout.right}) {
    fillRect(frame.renderer, bar, withAlpha(theme::white, alpha));
  }
}

}  // namespace tavek

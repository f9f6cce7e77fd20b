#include "display/playback/volume_bar.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr Uint64 standMs = 800;
constexpr int bandHeight = 48;
constexpr int leastBandWidth = 220;
constexpr int edge = 12;
constexpr int labelGap = 16;

int bandWidthFor(int width, const std::optional<VolumeLabels>& labels) {
  const bool narrow = width < 884;
  if (!labels) return narrow ? leastBandWidth : width / 4;
  const int need = labels->minimum.x + labels->maximum.x + 216;
  return std::max(need, narrow ? leastBandWidth : width / 4);
}

std::string labelOf(double db) {
  return std::to_string(std::lround(db)) + " dB";
}

}  // namespace

VolumeLayout volumeLayout(int width, int height, int percent, const std::optional<VolumeLabels>& labels) {
  const int bandWidth = bandWidthFor(width, labels);
  const SDL_Rect band{(width - bandWidth) / 2, height - bandHeight - height / 4, bandWidth, bandHeight};
  SDL_Rect track{band.x + edge, band.y + 21, band.w - 2 * edge, 6};
  SDL_Point minimum{};
  SDL_Point maximum{};
  if (labels) {
    const auto middle = [&](SDL_Point size) { return band.y + (bandHeight - size.y) / 2; };
    minimum = {band.x + edge, middle(labels->minimum)};
    maximum = {band.x + band.w - edge - labels->maximum.x, middle(labels->maximum)};
    track.x += labels->minimum.x + labelGap;
    track.w -= labels->minimum.x + labels->maximum.x + 2 * labelGap;
  }
  track.w = std::max(track.w, 10);
  const int filled = static_cast<int>(track.w * std::clamp(percent / 100.0, 0.0, 1.0));
  return {track, {track.x, track.y, filled, track.h}, minimum, maximum};
}

void VolumeBar::show(int percent, double gainDb, double minDb, double maxDb, Uint64 nowMs) {
  percent_ = std::clamp(percent, 0, 100);
  gainDb_ = gainDb;
  minDb_ = minDb;
  maxDb_ = maxDb;
  shownAt_ = nowMs;
}

void VolumeBar::reset() {
  shownAt_ = 0;
  percent_ = 0;
}

void VolumeBar::draw(const FrameContext& frame) {
  if (frame.nowMs >= shownAt_ + standMs) shownAt_ = 0;
  if (shownAt_ == 0) return;

  const std::string minimum = labelOf(minDb_);
  const std::string maximum = labelOf(maxDb_);
  std::optional<VolumeLabels> labels;
  if (frame.baseFont != nullptr) {
    labels = {textSize(frame.baseFont, minimum), textSize(frame.baseFont, maximum)};
  }
  const VolumeLayout layout = volumeLayout(frame.width, frame.height, percent_, labels);

  const BlendScope blend(frame.renderer);
  fillRect(frame.renderer, layout.track, withAlpha(theme::white, 220));
  fillRect(frame.renderer, layout.filled, rgba(0, 200, 0, 200));
  constexpr Colour labelColour = 0xDCFFFFFF;
  constexpr Colour labelShadow = 0xA0000000;
  drawText(frame.renderer, frame.baseFont, minimum, layout.minimum.x, layout.minimum.y, labelColour,
           labelShadow);
  drawText(frame.renderer, frame.baseFont, maximum, layout.maximum.x, layout.maximum.y, labelColour,
           labelShadow);
}

}  // namespace tavek

#include "display/playback/seek_bar.h"

#include <algorithm>
#include <string>

#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
#include "display/toolkit/time_text.h"

namespace tavek {
namespace {

constexpr int trackHeight = 6;
constexpr int knobRadius = 18;
constexpr Uint64 standMs = 500;

}  // namespace

SeekBarLayout seekBarLayout(int width, int height, double ratio, const SeekBarTexts& sizes) {
  const int margin = std::max(sizes.position.x, sizes.remaining.x) + 70;
  const SDL_Rect track{margin, height - 100, std::max(0, width - 2 * margin + 20), trackHeight};
  const int played = static_cast<int>(track.w * ratio);
  const auto beside = [&](SDL_Point size) { return track.y + (trackHeight - size.y) / 2; };
  return {
      .track = track,
      .played = {track.x, track.y, played, trackHeight},
      .knob = {track.x + played, height - 97},
      .position = {track.x - sizes.position.x - 40, beside(sizes.position)},
      .duration = {track.x + (track.w - sizes.duration.x) / 2, height - 72},
      .remaining = {width - sizes.remaining.x - 30, beside(sizes.remaining)},
  };
}

void SeekBar::setDuration(std::int64_t us) {
  activityAt_ = 0;
  durationUs_ = std::max<std::int64_t>(us, 0);
}

void SeekBar::show(Uint64 nowMs) {
  touch(nowMs);
  if (!fade_.visible) fade_ = {true, nowMs};
}

void SeekBar::touch(Uint64 nowMs) {
  activityAt_ = nowMs;
  heldAt_ = nowMs;
}

void SeekBar::reset() {
  activityAt_ = 0;
  durationUs_ = 0;
}

double SeekBar::advance(const SeekBarInput& input, Uint64 nowMs) {
  if (durationUs_ < 1 || activityAt_ == 0) {
    if (fade_.visible) fade_ = {false, nowMs};
    return 0.0;
  }
  if (input.seekFocus) heldAt_ = nowMs;
  const bool stands = input.videoPaused || input.seekFocus;
  const bool target = stands || (nowMs <= heldAt_ + standMs && !input.stripShown);
  const double strength = advanceFade(fade_, target, nowMs);
  return input.stripShown || input.positionUs < 0 ? 0.0 : strength;
}

void SeekBar::draw(const FrameContext& frame, const SeekBarInput& input) {
  const double strength = advance(input, frame.nowMs);
  if (strength <= 0.0) return;

  TTF_Font* font = nullptr;
  if (frame.baseFont != nullptr) {
    font = regularFont(TTF_FontHeight(frame.baseFont) + 6);
    if (font == nullptr) font = frame.baseFont;
  }
  const std::string position = formatTime(input.positionUs);
  const std::string duration = formatTime(durationUs_);
  const std::string remaining = formatTime(std::max<std::int64_t>(durationUs_ - input.positionUs, 0));
  const double ratio =
      std::min(1.0, static_cast<double>(input.positionUs) / static_cast<double>(durationUs_));
  const SeekBarLayout layout =
      seekBarLayout(frame.width, frame.height, ratio,
                    {textSize(font, position), textSize(font, duration), textSize(font, remaining)});

  const std::uint8_t alpha = fadedAlpha(strength);
  {
    const BlendScope blend(frame.renderer);
    fillRect(frame.renderer, layout.track, withAlpha(theme::white, fadedAlpha(strength, 220)));
    fillRect(frame.renderer, layout.played, withAlpha(theme::accent, alpha));
  }
  drawDisc(frame.renderer, layout.knob.x, layout.knob.y, knobRadius, knobRadius,
           withAlpha(theme::accent, alpha));

  const Colour outline = withAlpha(theme::black, fadedAlpha(strength, 200));
  const auto write = [&](const std::string& text, SDL_Point at) {
    drawOutlinedText(frame.renderer, font, outline, text, at.x, at.y, withAlpha(theme::white, alpha));
  };
  write(position, layout.position);
  write(duration, layout.duration);
  write(remaining, layout.remaining);
}

}  // namespace tavek

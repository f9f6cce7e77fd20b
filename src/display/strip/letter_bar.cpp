#include "display/strip/letter_bar.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"
#include "library/titles.h"

namespace tavek {
namespace {

constexpr double slideMs = 120;
constexpr int bandHeight = 50;

}  // namespace

std::size_t letterCellOf(std::string_view text) {
  if (text.empty()) return letterAlphabet.find('A');
  const char letter = letterOf(text);
  return letter != 0 ? letterAlphabet.find(letter) : letterAlphabet.size() - 1;
}

void LetterBar::openAt(std::string_view posterName, Uint64 nowMs) {
  open_ = true;
  armed_ = false;
  slideAt_ = nowMs;
  cell_ = letterCellOf(typedText_.empty() ? posterName : std::string_view(typedText_).substr(0, 1));
  setText(std::string(1, letterAlphabet[cell_]), nowMs);
}

void LetterBar::close(Uint64 nowMs) {
  open_ = false;
  armed_ = true;
  slideAt_ = nowMs;
  setText({}, nowMs);
}

void LetterBar::step(int delta, Uint64 nowMs) {
  const auto last = static_cast<int>(letterAlphabet.size()) - 1;
  const auto next = static_cast<std::size_t>(std::clamp(static_cast<int>(cell_) + delta, 0, last));
  if (std::exchange(cell_, next) == next) return;
  setText(std::string(1, letterAlphabet[cell_]), nowMs);
}

void LetterBar::type(char character, Uint64 nowMs) {
  if (character != '\b') return setText(typedText_ + toLower({&character, 1}), nowMs);
  if (!typedText_.empty()) setText(typedText_.substr(0, typedText_.size() - 1), nowMs);
}

void LetterBar::forgetTyped(Uint64 nowMs) {
  constexpr Uint64 typedMs = 2000;
  if (!open_ && !typedText_.empty() && nowMs >= typedAt_ + typedMs) typedText_.clear();
}

void LetterBar::setText(std::string text, Uint64 nowMs) {
  typedText_ = std::move(text);
  typedAt_ = nowMs;
  if (!typedText_.empty()) cell_ = letterCellOf(std::string_view(typedText_).substr(0, 1));
}

double LetterBar::reveal(Uint64 nowMs) const {
  const double t = nowMs > slideAt_ ? std::min(static_cast<double>(nowMs - slideAt_) / slideMs, 1.0) : 0;
  return open_ ? t : 1 - t;
}

void LetterBar::draw(const FrameContext& frame) const {
  const double strength = reveal(frame.nowMs);
  if (strength <= 0 || frame.renderer == nullptr || frame.baseFont == nullptr) return;
  TTF_Font* font = regularFont(TTF_FontHeight(frame.baseFont) * 3 / 2);
  if (font == nullptr) font = frame.baseFont;
  const int top = static_cast<int>((strength - 1) * bandHeight);
  const BlendScope blending(frame.renderer);
  fillRect(frame.renderer, {0, top, frame.width, bandHeight}, scaleAlpha(rgba(0, 0, 0, 140), strength));
  const double cellWidth = static_cast<double>(frame.width) / static_cast<double>(letterAlphabet.size());
  for (std::size_t i = 0; i < letterAlphabet.size(); ++i) {
    const std::string letter(1, letterAlphabet[i]);
    const SDL_Point size = textSize(font, letter);
    const int centre = static_cast<int>((static_cast<double>(i) + 0.5) * cellWidth);
    const bool highlighted = (open_ || !typedText_.empty()) && i == cell_;
    if (highlighted) {
      const int width = std::max(static_cast<int>(cellWidth) - 8, size.x + 12);
      fillRect(frame.renderer, {centre - width / 2, top, width, bandHeight},
               scaleAlpha(withAlpha(theme::accent, 220), strength));
    }
    drawShadowedText(frame.renderer, font, letter, centre - size.x / 2, top + (bandHeight - size.y) / 2,
                     scaleAlpha(highlighted ? theme::white : rgba(200, 200, 200), strength),
                     scaleAlpha(rgba(0, 0, 0, 180), strength));
  }
}

}  // namespace tavek

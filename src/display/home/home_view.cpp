#include "display/home/home_view.h"

#include <algorithm>
#include <utility>

#include "display/toolkit/fonts.h"
#include "display/toolkit/shapes.h"
#include "display/toolkit/text.h"

namespace tavek {
namespace {

constexpr double fadeMs = 500;
constexpr double hintMs = 10'000;
constexpr Colour idleDisc = rgba(60, 60, 60, 220);
constexpr Colour deadArrow = rgba(128, 128, 128);
constexpr Colour litArrow = rgba(255, 128, 128);
constexpr const char* userHint = "Use LEFT/RIGHT to select user, OK to confirm";
constexpr const char* roomHint = "UP/DOWN to switch folder";

double since(Uint64 start, Uint64 now) {
  return now > start ? static_cast<double>(now - start) : 0.0;
}

double hintStrength(std::optional<Uint64> shownAt, Uint64 now) {
  if (!shownAt) return 0;
  return std::clamp(1.0 - (since(*shownAt, now) - hintMs) / fadeMs, 0.0, 1.0);
}

SDL_Point widestOf(TTF_Font* font, const std::vector<std::string>& texts) {
  SDL_Point widest{};
  for (const std::string& text : texts) {
    const SDL_Point size = textSize(font, text);
    widest = {std::max(widest.x, size.x), std::max(widest.y, size.y)};
  }
  return widest;
}

TTF_Font* fontOr(TTF_Font* font, const FrameContext& frame) {
  return font != nullptr ? font : frame.baseFont;
}

/// The largest room font in which every label fits the disc.
TTF_Font* roomFont(const FrameContext& frame, const UserDisc& disc, const std::vector<std::string>& labels) {
  for (int size = roomFontSize(disc.radius);; --size) {
    TTF_Font* font = fontOr(regularFont(size), frame);
    if (size <= 10 || widestOf(font, labels).x <= roomTextWidth(disc.radius)) return font;
  }
}

TTF_Font* nameFont(const FrameContext& frame, int smallestRadius, const std::vector<std::string>& names) {
  const int allowed = std::max(smallestRadius * 4 / 3, 16);
  int size = std::clamp(static_cast<int>(1.1 * smallestRadius), 14, 110);
  for (;;) {
    TTF_Font* font = fontOr(regularFont(size), frame);
    const int width = widestOf(font, names).x;
    if (width <= allowed || size <= 12) return font;
    size = std::max(12, std::min(size - 1, size * allowed / width));
  }
}

}  // namespace

void HomeView::setUsers(std::vector<std::string> names, std::size_t index) {
  userNames_ = std::move(names);
  userIndex_ = userNames_.empty() ? 0 : std::min(index, userNames_.size() - 1);
  discs_.resize(userNames_.size());
}

bool HomeView::moveUser(int delta) {
  if (userNames_.empty()) return false;
  const auto last = static_cast<int>(userNames_.size()) - 1;
  const auto index = static_cast<std::size_t>(std::clamp(static_cast<int>(userIndex_) + delta, 0, last));
  return std::exchange(userIndex_, index) != index;
}

void HomeView::showHint(Uint64 nowMs) {
  hintShownAt_.reset();
  if (!hintShownOnce_) hintShownAt_ = nowMs;
}

void HomeView::setArrows(bool up, bool down) {
  roomUpArrowLit_ = up;
  roomDownArrowLit_ = down;
}

double HomeView::strength(const FrameContext& frame, const HomeShown& input) {
  if (input.folderChangeAt)
    return std::clamp(1 - since(*input.folderChangeAt, frame.nowMs) / fadeMs, 0.0, 1.0);
  if (!fadeInAt_ || !input.homeMode || input.stripOn) return 1;
  const double strength = since(*fadeInAt_, frame.nowMs) / fadeMs;
  if (strength >= 1) fadeInAt_.reset();
  return std::min(strength, 1.0);
}

void HomeView::draw(const FrameContext& frame, const HomeShown& input) {
  if (frame.renderer == nullptr) return;
  const BlendScope blending(frame.renderer);
  const double alpha = strength(frame, input);
  fillRect(frame.renderer, {0, 0, frame.width, frame.height}, scaleAlpha(theme::black, alpha));
  const HomeLayout layout = layoutHome(static_cast<int>(userNames_.size()), frame.width, frame.height);
  for (std::size_t i = 0; i < layout.discs.size(); ++i) {
    const UserDisc& disc = layout.discs[i];
    const Colour colour = i == userIndex_ ? theme::accent : idleDisc;
    discs_[i].draw(frame.renderer, disc.centre, disc.radius, disc.ring, colour, alpha);
    if (i == userIndex_) drawRoom(frame, input, disc, alpha);
  }
  drawNames(frame, layout, alpha);
  drawHints(frame, input, layout.hintTop, alpha);
}

void HomeView::drawRoom(const FrameContext& frame, const HomeShown& input, const UserDisc& disc,
                        double strength) const {
  TTF_Font* font = roomFont(frame, disc, input.roomLabels);
  const RoomBox room = layoutRoomBox(disc, widestOf(font, input.roomLabels));
  fillRect(frame.renderer, room.box, scaleAlpha(theme::black, strength));
  if (input.roomIndex < input.roomLabels.size()) {
    drawText(frame.renderer, font, input.roomLabels[input.roomIndex], room.text.x, room.text.y,
             scaleAlpha(theme::white, strength));
  }
  drawArrows(frame.renderer, input, room, strength);
}

Colour HomeView::arrowColour(const HomeShown& input, bool up) const {
  if (!input.homeMode) return theme::white;
  if (up ? roomUpArrowLit_ : roomDownArrowLit_) return litArrow;
  const bool more = up ? input.roomIndex > 0 : input.roomIndex + 1 < input.roomLabels.size();
  return more ? theme::white : deadArrow;
}

void HomeView::drawArrows(SDL_Renderer* renderer, const HomeShown& input, const RoomBox& room,
                          double strength) const {
  const auto line = [&](int k, int y) {
    SDL_RenderDrawLine(renderer, room.arrows.x + k, y, room.arrows.x + room.arrowWidth - k, y);
  };
  setFadedDrawColour(strength, renderer, arrowColour(input, true));
  for (int k = 0; k < room.arrowHeight; ++k) line(k, room.arrows.y + room.arrowHeight - 1 - k);
  setFadedDrawColour(strength, renderer, arrowColour(input, false));
  for (int k = 0; k < room.arrowHeight; ++k) line(k, room.arrows.y + room.arrowHeight + room.arrowGap + k);
}

void HomeView::drawNames(const FrameContext& frame, const HomeLayout& layout, double strength) const {
  TTF_Font* font = nameFont(frame, layout.smallestRadius, userNames_);
  for (std::size_t i = 0; i < layout.discs.size(); ++i) {
    const UserDisc& disc = layout.discs[i];
    const SDL_Point size = textSize(font, userNames_[i]);
    drawText(frame.renderer, font, userNames_[i], disc.centre.x - size.x / 2, disc.centre.y - size.y / 2,
             scaleAlpha(theme::white, strength));
  }
}

void HomeView::drawHints(const FrameContext& frame, const HomeShown& input, int top, double strength) {
  if (!input.homeMode) {
    const SDL_Point size = textSize(frame.baseFont, userHint);
    const int y = top + size.y > frame.height - 19 ? frame.height - size.y - 20 : top;
    drawShadowedText(frame.renderer, frame.baseFont, userHint, (frame.width - size.x) / 2, y,
                     scaleAlpha(rgba(220, 220, 220), strength), scaleAlpha(rgba(0, 0, 0, 180), strength));
    return;
  }
  const double alpha = hintStrength(hintShownAt_, frame.nowMs) * strength;
  if (alpha <= 0) return;
  hintShownOnce_ = true;
  TTF_Font* font = fontOr(regularFont(std::clamp(frame.height / 24, 22, 48)), frame);
  const int lineHeight = textSize(font, roomHint).y;
  const int height = 2 * lineHeight + 6;
  int y = top + height > frame.height - 19 ? frame.height - height - 20 : top;
  for (const char* line : {roomHint, userHint}) {
    drawShadowedText(frame.renderer, font, line, (frame.width - textSize(font, line).x) / 2, y,
                     scaleAlpha(rgba(255, 220, 0), alpha), scaleAlpha(rgba(0, 0, 0, 180), alpha));
    y += lineHeight + 6;
  }
}

}  // namespace tavek

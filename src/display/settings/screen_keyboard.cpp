#include "display/settings/screen_keyboard.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace tavek {
namespace {

using enum ScreenKeyKind;

constexpr double slideMs = 220;
constexpr int rowPitch = 62;
constexpr int topMargin = 14;
constexpr int bottomMargin = 4;
constexpr int leastKeyWidth = 64;

constexpr ScreenKey characterKey(const char* label) {
  return {.label = label, .code = *label};
}

constexpr std::array digitRow{
    ScreenKey{.label = "Esc", .kind = Close, .width = 1.3F},
    characterKey("1"),
    characterKey("2"),
    characterKey("3"),
    characterKey("4"),
    characterKey("5"),
    characterKey("6"),
    characterKey("7"),
    characterKey("8"),
    characterKey("9"),
    characterKey("0"),
    characterKey("-"),
    characterKey("="),
    ScreenKey{.label = "Backspace", .kind = Backspace},
};
constexpr std::array upperRow{
    ScreenKey{.label = "Tab", .code = '\t', .width = 1.2F},
    characterKey("Q"),
    characterKey("W"),
    characterKey("E"),
    characterKey("R"),
    characterKey("T"),
    characterKey("Y"),
    characterKey("U"),
    characterKey("I"),
    characterKey("O"),
    characterKey("P"),
    characterKey("["),
    characterKey("]"),
    characterKey("\\"),
    ScreenKey{.label = "Enter", .kind = Submit, .width = 1.4F, .rowSpan = 2},
};
constexpr std::array homeRow{
    ScreenKey{.label = "Caps", .kind = Shift, .width = 1.5F},
    characterKey("A"),
    characterKey("S"),
    characterKey("D"),
    characterKey("F"),
    characterKey("G"),
    characterKey("H"),
    characterKey("J"),
    characterKey("K"),
    characterKey("L"),
    characterKey(";"),
    characterKey("'"),
    characterKey("#"),
};
constexpr std::array lowerRow{
    ScreenKey{.label = "Shift", .kind = Shift, .width = 1.4F},
    characterKey("Z"),
    characterKey("X"),
    characterKey("C"),
    characterKey("V"),
    characterKey("B"),
    characterKey("N"),
    characterKey("M"),
    characterKey(","),
    characterKey("."),
    characterKey("/"),
    ScreenKey{.label = "Shift", .kind = Shift, .width = 1.4F},
};
constexpr std::array spaceRow{ScreenKey{.label = "Space", .kind = Space, .code = ' ', .width = 2}};

constexpr std::array<std::span<const ScreenKey>, 5> rows{digitRow, upperRow, homeRow, lowerRow, spaceRow};

/// By their shares of `available`, and none below `least`; the last key takes what is left.
std::vector<int> keyWidths(std::span<const ScreenKey> keys, int available, int least) {
  float weights = std::accumulate(keys.begin(), keys.end(), 0.0F,
                                  [](float sum, const ScreenKey& key) { return sum + key.width; });
  std::vector<int> widths;
  for (const ScreenKey& key : keys) {
    const bool last = widths.size() + 1 == keys.size();
    const float share = last ? 1 : key.width / weights;
    widths.push_back(std::max(static_cast<int>(static_cast<float>(available) * share), least));
    available = std::max(available - widths.back(), 0);
    weights -= key.width;
  }
  return widths;
}

/// The keys of a row, of which `reserve` pixels on the right stay free.
std::vector<SDL_Rect> layoutRow(std::span<const ScreenKey> keys, SDL_Rect place, int gap, int reserve) {
  const int available = std::max(place.w - gap * (static_cast<int>(keys.size()) + 1) - reserve, 0);
  std::vector<int> widths = keyWidths(keys, available, leastKeyWidth);
  if (std::accumulate(widths.begin(), widths.end(), 0) > available) widths = keyWidths(keys, available, 1);
  place.x += gap;
  std::vector<SDL_Rect> rects;
  for (const int width : widths) {
    rects.push_back({place.x, place.y, width, place.h});
    place.x += width + gap;
  }
  return rects;
}

}  // namespace

std::span<const std::span<const ScreenKey>> keyboardRows() {
  return rows;
}

KeyboardLayout layoutKeyboard(const SDL_Rect& area, double animation) {
  constexpr int margins = topMargin + bottomMargin;
  const int count = static_cast<int>(rows.size());
  const int pitch = std::clamp((area.h - margins) / count, 1, rowPitch);
  const int gap = std::clamp(area.w / 128, 2, 8);
  KeyboardLayout layout;
  layout.panel = {area.x, 0, area.w, pitch * count + margins};
  layout.panel.y = area.y + area.h - static_cast<int>(animation * layout.panel.h);
  SDL_Rect place{area.x, layout.panel.y + topMargin, area.w, pitch - pitch / 6};
  int reserve = 0;
  for (const std::span<const ScreenKey> keys : rows) {
    if (keys.size() == 1) {
      const int width = std::max(area.w / 2, leastKeyWidth);
      layout.keys.push_back({{area.x + (area.w - width) / 2, place.y, width, place.h}});
    } else {
      layout.keys.push_back(layoutRow(keys, place, gap, reserve));
    }
    reserve = keys.back().rowSpan > 1 ? layout.keys.back().back().w + gap : 0;
    place.y += pitch;
  }
  return layout;
}

std::optional<KeyPlace> hitTestKeyboard(const KeyboardLayout& layout, SDL_Point point) {
  for (std::size_t row = 0; row < layout.keys.size(); ++row) {
    for (std::size_t column = 0; column < layout.keys[row].size(); ++column) {
      if (SDL_PointInRect(&point, &layout.keys[row][column])) return KeyPlace{row, column};
    }
  }
  return {};
}

void ScreenKeyboard::advance(Uint64 nowMs) {
  if (!visible()) return lastTick_.reset();
  const auto elapsed = static_cast<double>(nowMs - lastTick_.value_or(nowMs));
  lastTick_ = nowMs;
  const double step = std::min(elapsed, slideMs) / slideMs;
  animation_ = std::clamp(wanted_ ? animation_ + step : animation_ - step, 0.0, 1.0);
}

void ScreenKeyboard::setKeyboardCursor(int row, int column) {
  const auto nearest = [](int index, std::size_t count) {
    return static_cast<std::size_t>(std::clamp(index, 0, static_cast<int>(count) - 1));
  };
  cursor_.row = nearest(row, rows.size());
  cursor_.column = nearest(column, rows[cursor_.row].size());
}

void ScreenKeyboard::moveKeyboardCursor(int rowDelta, int columnDelta) {
  setKeyboardCursor(static_cast<int>(cursor_.row) + rowDelta, static_cast<int>(cursor_.column) + columnDelta);
}

}  // namespace tavek

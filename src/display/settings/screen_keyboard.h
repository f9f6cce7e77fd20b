#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include <SDL.h>

/// The keyboard at the bottom of the screen, for those who have none in their hands. Pixels; main thread
/// only.
namespace tavek {

enum class ScreenKeyKind { Character, Space, Backspace, Submit, Close, Shift };

struct ScreenKey {
  std::string_view label;
  ScreenKeyKind kind = ScreenKeyKind::Character;
  char code = 0;    ///< what a Character or the Space types; a letter in upper case
  float width = 1;  ///< its share of the row
  int rowSpan = 1;  ///< 2 keeps the end of the row below free
};

/// From the top, each from the left; no row is empty.
std::span<const std::span<const ScreenKey>> keyboardRows();

/// A key by its place in the rows.
struct KeyPlace {
  std::size_t row = 0;
  std::size_t column = 0;
  bool operator==(const KeyPlace&) const = default;
};

/// Where the panel and its keys lie.
struct KeyboardLayout {
  SDL_Rect panel{};
  std::vector<std::vector<SDL_Rect>> keys{};
};

/// The panel at the bottom of `area`, of which `animation`, 0 to 1, has slid in. Keys are narrower than they
/// should be where a row would not fit, and lower where the area is.
KeyboardLayout layoutKeyboard(const SDL_Rect& area, double animation);
std::optional<KeyPlace> hitTestKeyboard(const KeyboardLayout& layout, SDL_Point point);

/// Whether it shows, and the key that the cursor is on. What a key does is up to who is typed to.
class ScreenKeyboard {
 public:
  void showKeyboard(bool wanted) { wanted_ = wanted; }
  bool wanted() const { return wanted_; }
  /// Wanted, or still sliding out.
  bool visible() const { return wanted_ || animation_ > 0; }
  /// 0 is out of the screen, 1 is in.
  double animation() const { return animation_; }
  /// One step of the slide, by the time since the last one.
  void advance(Uint64 nowMs);

  const KeyPlace& cursor() const { return cursor_; }
  /// The nearest key to the place; the ends do not wrap.
  void setKeyboardCursor(int row, int column);
  void moveKeyboardCursor(int rowDelta, int columnDelta);
  const ScreenKey& currentKey() const { return keyboardRows()[cursor_.row][cursor_.column]; }

  bool shift() const { return shift_; }
  void toggleKeyboardShift() { shift_ = !shift_; }
  void setKeyboardShift(bool shift) { shift_ = shift; }

 private:
  bool wanted_ = false;
  bool shift_ = false;
  double animation_ = 0;
  std::optional<Uint64> lastTick_;  ///< of the slide; none at rest outside the screen
  KeyPlace cursor_;
};

}  // namespace tavek

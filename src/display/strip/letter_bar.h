#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <SDL.h>

#include "display/toolkit/frame_context.h"

namespace tavek {

inline constexpr std::string_view letterAlphabet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

/// The cell of a title by its first letter or digit, without accents. One of another script has the last
/// cell, and no title that of A.
std::size_t letterCellOf(std::string_view text);

/// The bar across the top of the screen from which posters are reached by their first letters. After each
/// change of the typed text the poster that it means is to be selected.
class LetterBar {
 public:
  bool armed() const { return armed_; }
  bool open() const { return open_; }
  const std::string& typedText() const { return typedText_; }

  /// The next step up opens the bar.
  void arm() { armed_ = true; }
  void disarm() { armed_ = false; }
  /// Slides in, at the letter of what was typed or of the selected poster's name.
  void openAt(std::string_view posterName, Uint64 nowMs);
  /// Slides out and forgets what was typed.
  void close(Uint64 nowMs);
  /// One cell to the side; the ends do not wrap.
  void step(int delta, Uint64 nowMs);
  /// A backspace takes the last character away.
  void type(char character, Uint64 nowMs);
  /// What was typed is forgotten two seconds after its last change, with the bar closed.
  void forgetTyped(Uint64 nowMs);
  /// Closed at once; what was typed lives on for its two seconds.
  void reset() {
    armed_ = open_ = false;
    slideAt_ = 0;
  }

  void draw(const FrameContext& frame) const;

 private:
  double reveal(Uint64 nowMs) const;
  void setText(std::string text, Uint64 nowMs);

  bool armed_ = false;
  bool open_ = false;
  Uint64 slideAt_ = 0;  ///< when it was last opened or closed
  std::size_t cell_ = 0;
  std::string typedText_;
  Uint64 typedAt_ = 0;
};

}  // namespace tavek

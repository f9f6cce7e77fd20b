#pragma once

#include "display/settings/screen_keyboard.h"
#include "display/toolkit/frame_context.h"

namespace tavek {

/// The panel with its keys; the one under the cursor stands out while `focused`. With `lowerCaseLabels` the
/// letters show what they would type.
void drawKeyboard(const FrameContext& frame, const ScreenKeyboard& keyboard, const KeyboardLayout& layout,
                  bool focused, bool lowerCaseLabels);

}  // namespace tavek

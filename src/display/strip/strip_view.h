#pragma once

#include <string>

#include "display/strip/posters.h"
#include "display/strip/strip_state.h"
#include "display/toolkit/frame_context.h"

namespace tavek {

/// What stands above the posters; empty texts have no pill.
struct StripTexts {
  std::string label;  ///< of the selected poster
  std::string error;
};

/// The strip with its posters, its frame round the selected one, and the pills above. Decides nothing.
void drawStrip(const FrameContext& frame, const StripState& strip, const Posters& posters,
               const StripTexts& texts);

}  // namespace tavek

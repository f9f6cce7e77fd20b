#pragma once

#include <string>

#include <SDL.h>

#include "display/toolkit/frame_context.h"

namespace tavek {

/// A short word to the viewer that goes by itself; on the home screen else what the scans are at.
class StatusLines {
 public:
  void showStatus(std::string text, Uint64 nowMs);

  /// The status line: in the middle of the top on the home screen, else at the lower left.
  void draw(const FrameContext& frame, bool homeMode);

 private:
  std::string statusLine_;
  Uint64 statusLineAt_ = 0;
};

/// What the scans are at, in the middle of a screen of its own. False if there is nothing to tell.
bool drawScanScreen(const FrameContext& frame);

}  // namespace tavek

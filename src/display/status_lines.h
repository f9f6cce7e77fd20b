#pragma once

#include <string>

#include <SDL.h>

#include "display/toolkit/frame_context.h"

namespace tavek {

/// A short word to the viewer that goes by itself, and the failure that the strip shows until the next step.
class StatusLines {
 public:
  void showStatus(std::string text, Uint64 nowMs);
  void showError(std::string text) { errorLine_ = std::move(text); }
  void clearError() { errorLine_.clear(); }
  const std::string& errorLine() const { return errorLine_; }

  /// The status line: in the middle of the top on the home screen, else at the lower left.
  void draw(const FrameContext& frame, bool homeMode);

 private:
  std::string statusLine_;
  Uint64 statusLineAt_ = 0;
  std::string errorLine_;
};

}  // namespace tavek

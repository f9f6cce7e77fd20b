#pragma once

#include <optional>

#include <SDL.h>

#include "display/toolkit/frame_context.h"

namespace tavek {

/// Sizes of the two labels of the scale.
struct VolumeLabels {
  SDL_Point minimum{};
  SDL_Point maximum{};
};

/// Where the bar's parts lie; without labels their places mean nothing.
struct VolumeLayout {
  SDL_Rect track;
  SDL_Rect filled;
  SDL_Point minimum;
  SDL_Point maximum;
};
VolumeLayout volumeLayout(int width, int height, int percent, const std::optional<VolumeLabels>& labels);

/// The volume as a bar between the ends of its scale; it stands for 800 ms after a change and does not fade.
class VolumeBar {
 public:
  void show(int percent, double gainDb, double minDb, double maxDb, Uint64 nowMs);
  void reset();
  void draw(const FrameContext& frame);

 private:
  Uint64 shownAt_ = 0;  ///< 0 means off
  int percent_ = 0;
  double gainDb_ = 0.0;
  double minDb_ = 0.0;
  double maxDb_ = 0.0;
};

}  // namespace tavek

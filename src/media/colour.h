#pragma once

#include <optional>

#include "base/picture_colours.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

/// What a decoded frame says of its colours, and what it leaves unsaid.
namespace tavek {

/// BT.709 or BT.601 where the frame is silent, by its height; otherwise as it says.
AVColorSpace matrixOf(const AVFrame& frame);
/// By the frame's range, or by a pixel format that hides it.
bool isFullRange(const AVFrame& frame);

/// How the screen has to take a planar YUV frame; none if no screen can take it as it is.
std::optional<PictureColours> screenColoursOf(const AVFrame& frame);

}  // namespace tavek

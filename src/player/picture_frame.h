#pragma once

#include <cstdint>
#include <memory>

extern "C" {
#include <libavutil/frame.h>
}

namespace tavek {

/// Frees a frame with its planes: the reference-counted ones, or those that av_image_alloc made. Null is a
/// no-op.
void freeFrame(AVFrame* frame);

struct FreeFrame {
  void operator()(AVFrame* frame) const { freeFrame(frame); }
};

/// A decoded picture on its way to the screen: planar YUV 4:2:0, its pts in microseconds.
using PicturePtr = std::unique_ptr<AVFrame, FreeFrame>;

}  // namespace tavek

#include "player/picture_frame.h"

extern "C" {
#include <libavutil/mem.h>
}

namespace tavek {

void freeFrame(AVFrame* frame) {
  if (frame == nullptr) return;
  if (frame->buf[0] != nullptr) {
    av_frame_unref(frame);
  } else if (frame->data[0] != nullptr) {
    av_freep(static_cast<void*>(&frame->data[0]));
  }
  av_frame_free(&frame);
}

}  // namespace tavek

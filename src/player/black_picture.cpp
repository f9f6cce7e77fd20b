#include "player/black_picture.h"

#include <cstddef>
#include <cstring>

#include "media/error.h"
#include "media/handles.h"

namespace tavek {
namespace {

ffmpeg::FramePtr makeBlackPicture() {
  ffmpeg::FramePtr picture = ffmpeg::makeFrame();
  if (!picture) throw ffmpeg::Error("Failed to allocate audio filler AVFrame");
  picture->width = 1280;
  picture->height = 720;
  picture->format = AV_PIX_FMT_YUV420P;
  picture->sample_aspect_ratio = {1, 1};
  if (av_frame_get_buffer(picture.get(), 0) < 0) {
    throw ffmpeg::Error("Failed to allocate audio filler frame buffer");
  }
  for (const auto& [plane, rows, value] : {std::tuple{0, 720, 0}, {1, 360, 128}, {2, 360, 128}}) {
    std::memset(picture->data[plane], value,
                static_cast<std::size_t>(picture->linesize[plane]) * static_cast<std::size_t>(rows));
  }
  return picture;
}

}  // namespace

const AVFrame* blackPicture() {
  static const ffmpeg::FramePtr picture = makeBlackPicture();
  return picture.get();
}

}  // namespace tavek

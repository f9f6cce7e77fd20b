#include "player/picture_decoder.h"

#include <utility>

#include "media/colour.h"
#include "media/error.h"

extern "C" {
#include <libavutil/hwcontext.h>
}

namespace tavek {
namespace {

constexpr AVPixelFormat pictureFormat = AV_PIX_FMT_YUV420P;
constexpr int scalerFlags = SWS_FAST_BILINEAR;

/// The screen takes the planes as they are, if their rows lie from top to bottom.
bool fitsScreen(const AVFrame& frame) {
  return frame.format == pictureFormat && screenColoursOf(frame) && frame.linesize[0] > 0 &&
         frame.linesize[1] > 0 && frame.linesize[2] > 0;
}

void require(bool worked, const char* complaint) {
  if (!worked) throw ffmpeg::Error(complaint);
}

}  // namespace

void PictureDecoder::takeFrame(AVFrame& frame) {
  if (stale_.isStale(frame)) return;
  AVFrame& work = softwareFrame(frame);
  if (work.width <= 0) work.width = codec_->width();
  if (work.height <= 0) work.height = codec_->height();
  if (work.format < 0) work.format = codec_->pixelFormat();
  work.pts = positionUs(work);
  ffmpeg::FramePtr picture = toPicture(work);
  av_frame_unref(&frame);
  av_frame_unref(&work);
  send(std::move(picture));
}

/// A hardware decoder's picture is brought into memory first.
AVFrame& PictureDecoder::softwareFrame(AVFrame& frame) {
  if (frame.format != AV_PIX_FMT_DRM_PRIME) return frame;
  if (!transferFrame_) transferFrame_ = ffmpeg::makeFrame();
  require(transferFrame_ != nullptr, "Failed to allocate transfer AVFrame");
  require(av_hwframe_transfer_data(transferFrame_.get(), &frame, 0) >= 0,
          "Failed to transfer hw frame to software");
  require(av_frame_copy_props(transferFrame_.get(), &frame) >= 0, "Copying frame properties failed (hw)");
  return *transferFrame_;
}

ffmpeg::FramePtr PictureDecoder::toPicture(AVFrame& frame) {
  if (!fitsScreen(frame)) {
    if (!conversion_ || !conversion_->fits(frame))
      conversion_ = std::make_unique<Conversion>(frame, scalerFlags);
    return conversion_->convert(frame);
  }
  ffmpeg::FramePtr picture = ffmpeg::makeFrame();
  require(picture != nullptr, "Failed to allocate converted AVFrame");
  av_frame_move_ref(picture.get(), &frame);
  return picture;
}

/// Refused only when the item is over.
void PictureDecoder::send(ffmpeg::FramePtr picture) {
  Tagged<ffmpeg::FramePtr> tagged{std::move(picture), round_};
  exchange_.pictures.push(tagged);
}

}  // namespace tavek

#include "media/colour.h"
#include "media/error.h"
#include "player/decode.h"
#include "player/frame_position.h"
#include "player/playback_timer.h"

extern "C" {
#include <libavutil/hwcontext.h>
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
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

void Pipeline::videoThread() {
  const ffmpeg::FramePtr scratch = ffmpeg::makeFrame();
  require(scratch != nullptr, "Failed to allocate decoded AVFrame");
  const auto publish = [this](AVFrame* frame, unsigned round) { return publishFrame(frame, round); };
  while (!stopping()) {
    if (held()) {
      sleepMilliseconds(10);
      continue;
    }
    Tagged<ffmpeg::PacketPtr> packet;
    if (!video_.packets.pop(packet)) {
      drain(video_, scratch.get(), publish);
      frames_.finish();
      return;
    }
    decode(video_, packet.item.get(), packet.seekRound, scratch.get(), publish);
  }
  video_.packets.close();
  frames_.close();
}

bool Pipeline::publishFrame(AVFrame* frame, unsigned round) {
  AVFrame* work = softwareFrame(frame);
  if (work->width <= 0) work->width = video_.codec->width();
  if (work->height <= 0) work->height = video_.codec->height();
  if (work->format < 0) work->format = video_.codec->pixelFormat();
  work->pts = framePositionUs(*work, video_.timeBase);
  Tagged<PicturePtr> picture{toPicture(work), round};
  av_frame_unref(frame);
  if (work != frame) av_frame_unref(work);
  return frames_.push(picture);
}

/// A hardware decoder's picture is brought into memory first.
AVFrame* Pipeline::softwareFrame(AVFrame* frame) {
  if (frame->format != AV_PIX_FMT_DRM_PRIME) return frame;
  if (!transferFrame_) transferFrame_ = ffmpeg::makeFrame();
  AVFrame* transfer = transferFrame_.get();
  require(transfer != nullptr, "Failed to allocate transfer AVFrame");
  require(av_hwframe_transfer_data(transfer, frame, 0) >= 0, "Failed to transfer hw frame to software");
  require(av_frame_copy_props(transfer, frame) >= 0, "Copying frame properties failed (hw)");
  return transfer;
}

PicturePtr Pipeline::toPicture(AVFrame* frame) {
  if (!fitsScreen(*frame)) {
    if (!conversion_ || !conversion_->fits(*frame))
      conversion_ = std::make_unique<Conversion>(*frame, scalerFlags);
    return PicturePtr(conversion_->convert(*frame).release());
  }
  PicturePtr picture(ffmpeg::makeFrame().release());
  require(picture != nullptr, "Failed to allocate converted AVFrame");
  require(av_frame_ref(picture.get(), frame) >= 0, "Referencing decoded frame failed");
  return picture;
}

}  // namespace tavek

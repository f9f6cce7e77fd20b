#include "media/colour.h"

#include <algorithm>
#include <array>

namespace tavek {
namespace {

/// The tallest picture of standard definition.
constexpr int standardHeight = 576;

constexpr std::array fullRangeFormats{AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUVJ444P,
                                      AV_PIX_FMT_YUVJ440P, AV_PIX_FMT_YUVJ411P};

}  // namespace

AVColorSpace matrixOf(const AVFrame& frame) {
  switch (frame.colorspace) {
    case AVCOL_SPC_UNSPECIFIED:
    case AVCOL_SPC_RESERVED:
      return frame.height > standardHeight ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    case AVCOL_SPC_BT470BG:
      return AVCOL_SPC_SMPTE170M;  // the same numbers
    default:
      return frame.colorspace;
  }
}

bool isFullRange(const AVFrame& frame) {
  return frame.color_range == AVCOL_RANGE_JPEG ||
         std::ranges::find(fullRangeFormats, frame.format) != fullRangeFormats.end();
}

std::optional<PictureColours> screenColoursOf(const AVFrame& frame) {
  const bool full = isFullRange(frame);
  switch (matrixOf(frame)) {
    case AVCOL_SPC_SMPTE170M:
      return full ? PictureColours::Bt601Full : PictureColours::Bt601;
    case AVCOL_SPC_BT709:
      return full ? std::nullopt : std::optional(PictureColours::Bt709);
    default:
      return {};
  }
}

}  // namespace tavek

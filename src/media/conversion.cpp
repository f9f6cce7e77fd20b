#include "media/conversion.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "media/colour.h"
#include "media/tone_curve.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace tavek {
namespace {

constexpr AVPixelFormat screenFormat = AV_PIX_FMT_YUV420P;
/// Of pictures whose light is still to be toned down, which takes more levels.
constexpr AVPixelFormat brightFormat = AV_PIX_FMT_YUV420P10;
/// Rows of this alignment suit the vector code of the scaler and of the screen's upload.
constexpr int rowAlignment = 32;

struct FullRangeTwin {
  AVPixelFormat fullRange;
  AVPixelFormat plain;
};

// Formats that hide the range in the format; the scaler wants to be told both apart.
constexpr std::array fullRangeTwins{
    FullRangeTwin{AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUV420P},
    FullRangeTwin{AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUV422P},
    FullRangeTwin{AV_PIX_FMT_YUVJ444P, AV_PIX_FMT_YUV444P},
    FullRangeTwin{AV_PIX_FMT_YUVJ440P, AV_PIX_FMT_YUV440P},
    FullRangeTwin{AV_PIX_FMT_YUVJ411P, AV_PIX_FMT_YUV411P},
};

AVPixelFormat plainFormat(int format) {
  const auto* twin = std::ranges::find(fullRangeTwins, format, &FullRangeTwin::fullRange);
  return twin != fullRangeTwins.end() ? twin->plain : static_cast<AVPixelFormat>(format);
}

std::string nameOf(int format) {
  const char* name = av_get_pix_fmt_name(static_cast<AVPixelFormat>(format));
  return name != nullptr ? name : "unknown";
}

struct Side {
  int format;
  AVColorSpace matrix;
  bool fullRange;
};

/// The ranges are set before the scaler is initialised: it picks its inner loops then, and a range that it
/// hears of later changes no pixel. The matrices can only be told afterwards.
ffmpeg::SwsContextPtr makeScaler(int width, int height, const Side& source, const Side& target, int flags) {
  ffmpeg::SwsContextPtr context(sws_alloc_context());
  if (!context) return nullptr;
  const struct {
    const char* name;
    int value;
  } options[] = {{"srcw", width},
                 {"srch", height},
                 {"dstw", width},
                 {"dsth", height},
                 {"sws_flags", flags},
                 {"src_range", source.fullRange ? 1 : 0},
                 {"dst_range", target.fullRange ? 1 : 0}};
  bool possible = av_opt_set_pixel_fmt(context.get(), "src_format", plainFormat(source.format), 0) >= 0 &&
                  av_opt_set_pixel_fmt(context.get(), "dst_format", plainFormat(target.format), 0) >= 0;
  for (const auto& [name, value] : options) {
    possible = possible && av_opt_set_int(context.get(), name, value, 0) >= 0;
  }
  if (!possible || sws_init_context(context.get(), nullptr, nullptr) < 0) return nullptr;
  constexpr int unchanged = 1 << 16;
  // A failure means that the formats have no matrix.
  sws_setColorspaceDetails(context.get(), sws_getCoefficients(source.matrix), source.fullRange ? 1 : 0,
                           sws_getCoefficients(target.matrix), target.fullRange ? 1 : 0, 0, unchanged,
                           unchanged);
  return context;
}

ffmpeg::SwsContextPtr makeScalerOrThrow(int width, int height, const Side& source, const Side& target,
                                        int flags) {
  auto context = width > 0 && height > 0 ? makeScaler(width, height, source, target, flags) : nullptr;
  if (!context) {
    throw std::runtime_error("Conversion: failed SwsContext for " + nameOf(source.format) + " -> " +
                             nameOf(target.format));
  }
  return context;
}

void scale(SwsContext* context, const AVFrame& source, AVFrame& destination) {
  const int rows = sws_scale(context, source.data, source.linesize, 0, source.height, destination.data,
                             destination.linesize);
  if (rows <= 0) throw std::runtime_error("Conversion: sws_scale failed");
}

/// Where the screen knows the matrix there is no need to change it.
AVColorSpace targetMatrixFor(AVColorSpace source) {
  return source == AVCOL_SPC_SMPTE170M ? source : AVCOL_SPC_BT709;
}

ffmpeg::BufferPoolPtr makePool(int width, int height) {
  const int bytes = av_image_get_buffer_size(screenFormat, width, height, rowAlignment);
  // Some of the scaler's loops write a little beyond a row.
  constexpr std::size_t padding = 64;
  if (bytes <= 0) throw std::runtime_error("Conversion: no picture has that size");
  return ffmpeg::BufferPoolPtr(av_buffer_pool_init(static_cast<std::size_t>(bytes) + padding, nullptr));
}

ffmpeg::FramePtr makeBright(int width, int height) {
  ffmpeg::FramePtr frame = ffmpeg::makeFrame();
  if (frame) {
    frame->format = brightFormat;
    frame->width = width;
    frame->height = height;
  }
  if (!frame || av_frame_get_buffer(frame.get(), 0) < 0)
    throw std::runtime_error("Conversion: no memory for a picture");
  return frame;
}

}  // namespace

Conversion::Kind Conversion::kindOf(const AVFrame& frame) {
  return {frame.width,     frame.height,       frame.format,
          matrixOf(frame), isFullRange(frame), frame.color_trc == AVCOL_TRC_SMPTE2084};
}

Conversion::Conversion(const AVFrame& source, int scalerFlags)
    : kind_(kindOf(source)),
      targetMatrix_(targetMatrixFor(kind_.matrix)),
      context_(makeScalerOrThrow(source.width, source.height, {kind_.format, kind_.matrix, kind_.fullRange},
                                 {kind_.pq ? brightFormat : screenFormat, targetMatrix_, false},
                                 scalerFlags)),
      pool_(makePool(source.width, source.height)),
      bright_(kind_.pq ? makeBright(source.width, source.height) : nullptr) {}

bool Conversion::fits(const AVFrame& source) const {
  return kindOf(source) == kind_;
}

ffmpeg::FramePtr Conversion::convert(const AVFrame& source) {
  ffmpeg::FramePtr picture = ffmpeg::makeFrame();
  if (!picture || av_frame_copy_props(picture.get(), &source) < 0)
    throw std::runtime_error("Conversion: no memory for a picture");
  picture->buf[0] = av_buffer_pool_get(pool_.get());
  if (picture->buf[0] == nullptr) throw std::runtime_error("Conversion: no memory for a picture");
  picture->width = source.width;
  picture->height = source.height;
  picture->format = screenFormat;
  picture->colorspace = targetMatrix_;
  picture->color_range = AVCOL_RANGE_MPEG;
  av_image_fill_arrays(picture->data, picture->linesize, picture->buf[0]->data, screenFormat, source.width,
                       source.height, rowAlignment);
  if (bright_) {
    toneDown(source, *picture);
  } else {
    scale(context_.get(), source, *picture);
  }
  return picture;
}

void Conversion::toneDown(const AVFrame& source, AVFrame& picture) {
  scale(context_.get(), source, *bright_);
  picture.color_trc = AVCOL_TRC_BT709;
  const ToneCurve& curve = toneCurve();
  for (int plane = 0; plane < 3; ++plane) {
    const ToneCurve::Table& table = plane == 0 ? curve.luma : curve.chroma;
    const int width = plane == 0 ? picture.width : (picture.width + 1) / 2;
    const int height = plane == 0 ? picture.height : (picture.height + 1) / 2;
    for (int row = 0; row < height; ++row) {
      const auto* from = reinterpret_cast<const std::uint16_t*>(
          bright_->data[plane] + std::ptrdiff_t{row} * bright_->linesize[plane]);
      std::uint8_t* to = picture.data[plane] + std::ptrdiff_t{row} * picture.linesize[plane];
      std::transform(from, from + width, to, [&](std::uint16_t sample) {
        return table[std::min<std::size_t>(sample, ToneCurve::levels - 1)];
      });
    }
  }
}

void convertOnce(const AVFrame& source, AVFrame& destination, int scalerFlags) {
  const AVPixFmtDescriptor* target = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(destination.format));
  const bool rgb = target != nullptr && (target->flags & AV_PIX_FMT_FLAG_RGB) != 0;
  const auto context =
      makeScalerOrThrow(source.width, source.height, {source.format, matrixOf(source), isFullRange(source)},
                        {destination.format, matrixOf(source), rgb}, scalerFlags);
  scale(context.get(), source, destination);
}

}  // namespace tavek

#include "media/conversion.h"

#include <stdexcept>
#include <string>

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace tavek {
namespace {

struct FullRangeTwin {
  AVPixelFormat fullRange;
  AVPixelFormat plain;
};

// Formats that hide the range in the format; the scaler wants to be told both apart.
constexpr FullRangeTwin fullRangeTwins[] = {
    {AV_PIX_FMT_YUVJ420P, AV_PIX_FMT_YUV420P},
    {AV_PIX_FMT_YUVJ422P, AV_PIX_FMT_YUV422P},
    {AV_PIX_FMT_YUVJ444P, AV_PIX_FMT_YUV444P},
    {AV_PIX_FMT_YUVJ440P, AV_PIX_FMT_YUV440P},
};

std::string nameOf(AVPixelFormat format) {
  const char* name = av_get_pix_fmt_name(format);
  return name != nullptr ? name : "unknown";
}

/// The ranges are set before the scaler is initialised: it picks its inner loops then, and a range that it
/// hears of later changes no pixel.
ffmpeg::SwsContextPtr makeScaler(int width, int height, AVPixelFormat source, AVPixelFormat destination,
                                 int flags) {
  bool fullRange = false;
  for (const FullRangeTwin& twin : fullRangeTwins) {
    if (twin.fullRange != source) continue;
    source = twin.plain;
    fullRange = true;
    break;
  }
  ffmpeg::SwsContextPtr context(sws_alloc_context());
  if (!context) return nullptr;
  const struct {
    const char* name;
    int value;
  } options[] = {{"srcw", width},  {"srch", height},     {"dstw", width},
                 {"dsth", height}, {"sws_flags", flags}, {"src_range", fullRange ? 1 : 0},
                 {"dst_range", 0}};
  bool possible = av_opt_set_pixel_fmt(context.get(), "src_format", source, 0) >= 0 &&
                  av_opt_set_pixel_fmt(context.get(), "dst_format", destination, 0) >= 0;
  for (const auto& [name, value] : options) {
    possible = possible && av_opt_set_int(context.get(), name, value, 0) >= 0;
  }
  if (!possible || sws_init_context(context.get(), nullptr, nullptr) < 0) return nullptr;
  return context;
}

}  // namespace

Conversion::Conversion(int width, int height, AVPixelFormat sourceFormat, AVPixelFormat destinationFormat,
                       int scalerFlags)
    : width_(width),
      height_(height),
      sourceFormat_(sourceFormat),
      context_(makeScaler(width, height, sourceFormat, destinationFormat, scalerFlags)) {
  if (!context_) {
    throw std::runtime_error("Conversion: failed SwsContext for " + nameOf(sourceFormat) + " -> " +
                             nameOf(destinationFormat));
  }
}

void Conversion::convert(const AVFrame* source, AVFrame* destination) {
  if (!context_ || source == nullptr || destination == nullptr) return;
  const int rows = sws_scale(context_.get(), source->data, source->linesize, 0, height_, destination->data,
                             destination->linesize);
  if (rows <= 0) throw std::runtime_error("Conversion: sws_scale failed");
}

bool Conversion::fits(int width, int height, AVPixelFormat sourceFormat) const {
  return width == width_ && height == height_ && sourceFormat == sourceFormat_;
}

}  // namespace tavek

#include "media/decoder_choice.h"

#include <array>
#include <utility>

namespace tavek {
namespace {

constexpr std::array hevcDecoders{"hevc_v4l2request", "hevc_v4l2m2m"};
constexpr std::array h264Decoders{"h264_v4l2m2m", "h264_mmal"};

}  // namespace

std::span<const char* const> hardwareDecodersFor(AVCodecID codec) {
  if (codec == AV_CODEC_ID_HEVC) return hevcDecoders;
  if (codec == AV_CODEC_ID_H264) return h264Decoders;
  return {};
}

ffmpeg::CodecContextPtr openHardwareDecoder(const char* ownDecoder, std::span<const char* const> names,
                                            const std::function<DecoderAttempt(const char*)>& attempt) {
  ffmpeg::CodecContextPtr held;
  if (ownDecoder != nullptr && *ownDecoder != '\0') held = attempt(ownDecoder).context;
  for (const char* name : names) {
    DecoderAttempt result = attempt(name);
    if (!result.inBuild) continue;
    held = std::move(result.context);
    if (held) break;
  }
  return held;
}

}  // namespace tavek

#pragma once

#include <cstdint>
#include <memory>
#include <vector>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
}

namespace tavek {

struct ResamplerDeleter {
  void operator()(SwrContext* context) const { swr_free(&context); }
};
using ResamplerHandle = std::unique_ptr<SwrContext, ResamplerDeleter>;

struct OwnedLayout {
  OwnedLayout() = default;
  ~OwnedLayout() { av_channel_layout_uninit(&value); }
  OwnedLayout(const OwnedLayout&) = delete;
  OwnedLayout& operator=(const OwnedLayout&) = delete;

  AVChannelLayout value{};
};

/// Turns decoded frames of one format into interleaved signed 16-bit samples in FFmpeg's default layout. One
/// object serves one source format and one count of outgoing channels.
class Resampler {
 public:
  /// The layout is copied. Throws std::runtime_error.
  Resampler(const AVChannelLayout& sourceLayout, AVSampleFormat sourceFormat, int sourceRate,
            int outputChannels, int outputRate);

  /// False when the frame has another format: a decoder may change its mind in mid-stream.
  bool takes(const AVFrame& frame, int outputChannels) const;

  /// The result is in frames, 0 for none. The block only grows, so it can be reused without an allocation.
  int convert(const AVFrame& frame, std::vector<std::int16_t>& block);

  /// Forgets what it holds back.
  void drop();

 private:
  OwnedLayout sourceLayout_;
  AVSampleFormat sourceFormat_;
  int sourceRate_;
  int outputChannels_;
  ResamplerHandle context_;
};

}  // namespace tavek

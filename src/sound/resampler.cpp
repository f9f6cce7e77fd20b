#include "sound/resampler.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>

namespace tavek {

Resampler::Resampler(const AVChannelLayout& sourceLayout, AVSampleFormat sourceFormat, int sourceRate,
                     int outputChannels, int outputRate)
    : sourceFormat_(sourceFormat), sourceRate_(sourceRate), outputChannels_(outputChannels) {
  if (av_channel_layout_copy(&sourceLayout_.value, &sourceLayout) < 0) {
    av_channel_layout_default(&sourceLayout_.value, sourceLayout.nb_channels);
  }
  AVChannelLayout outputLayout{};
  av_channel_layout_default(&outputLayout, outputChannels);
  SwrContext* context = nullptr;
  const int result = swr_alloc_set_opts2(&context, &outputLayout, AV_SAMPLE_FMT_S16, outputRate,
                                         &sourceLayout_.value, sourceFormat, sourceRate, 0, nullptr);
  context_.reset(context);
  if (result < 0 || swr_init(context) < 0) throw std::runtime_error("AudioOutput: swr_init failed (new API)");
}

bool Resampler::takes(const AVFrame& frame, int outputChannels) const {
  return outputChannels == outputChannels_ && frame.format == sourceFormat_ &&
         frame.sample_rate == sourceRate_ &&
         av_channel_layout_compare(&frame.ch_layout, &sourceLayout_.value) == 0;
}

int Resampler::convert(const AVFrame& frame, std::vector<std::int16_t>& block) {
  const int room = swr_get_out_samples(context_.get(), frame.nb_samples);
  if (room < 1) return 0;
  const auto samples = static_cast<std::size_t>(room) * static_cast<std::size_t>(outputChannels_);
  if (block.size() < samples) block.resize(samples);
  auto* out = reinterpret_cast<std::uint8_t*>(block.data());
  // The parameter's constness differs between FFmpeg's versions.
  auto** in = const_cast<const std::uint8_t**>(frame.extended_data);
  return std::max(swr_convert(context_.get(), &out, room, in, frame.nb_samples), 0);
}

void Resampler::drop() {
  swr_convert(context_.get(), nullptr, 0, nullptr, 0);
}

}  // namespace tavek

#pragma once

#include <cstring>
#include <memory>

#include "media/handles.h"

/// Sound as a decoder gives it.
namespace tavek::test {

using Parameters =
    std::unique_ptr<AVCodecParameters, decltype([](auto* old) { avcodec_parameters_free(&old); })>;

inline Parameters parametersOf(const char* layout, AVSampleFormat format = AV_SAMPLE_FMT_S16,
                               int rate = 48000) {
  Parameters parameters(avcodec_parameters_alloc());
  av_channel_layout_from_string(&parameters->ch_layout, layout);
  parameters->format = format;
  parameters->sample_rate = rate;
  return parameters;
}

/// 20 ms in which channel c stands still at `first` + c times `step`.
inline ffmpeg::FramePtr frameOf(const AVCodecParameters& parameters, int first, int step = 0) {
  auto frame = ffmpeg::makeFrame();
  frame->format = parameters.format;
  frame->sample_rate = parameters.sample_rate;
  frame->nb_samples = parameters.sample_rate / 50;
  av_channel_layout_copy(&frame->ch_layout, &parameters.ch_layout);
  av_frame_get_buffer(frame.get(), 0);
  const int channels = parameters.ch_layout.nb_channels;
  const int size = av_get_bytes_per_sample(static_cast<AVSampleFormat>(parameters.format));
  for (int i = 0; i < frame->nb_samples * channels; ++i) {
    const int value = first + i % channels * step;
    const auto whole = static_cast<std::int16_t>(value);
    const float real = static_cast<float>(value) / 32768.0F;
    auto* place = parameters.format == AV_SAMPLE_FMT_FLTP
                      ? frame->extended_data[i % channels] + i / channels * size
                      : frame->extended_data[0] + i * size;
    std::memcpy(place, size == 2 ? static_cast<const void*>(&whole) : &real, static_cast<std::size_t>(size));
  }
  return frame;
}

}  // namespace tavek::test

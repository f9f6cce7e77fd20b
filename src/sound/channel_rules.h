#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/sound_mode.h"

extern "C" {
#include <libavutil/channel_layout.h>
}

/// How many channels go out, and in which order the device wants them. A count of channels that goes out
/// always stands for FFmpeg's default layout of that count; positions are ALSA's SND_CHMAP_ numbers.
namespace tavek {

/// 2 to 6: what goes out for this source before the device is asked.
int outgoingChannels(const AVChannelLayout& source, SoundMode soundMode);

/// One position per channel of the default layout, SND_CHMAP_UNKNOWN for a channel that has no name at ALSA.
std::vector<unsigned> requestedPositions(int channels);

/// For each slot of the device the index of the channel that it takes; empty when the order is the same, or
/// when the device's positions cannot be trusted.
std::vector<std::size_t> channelMapFor(std::span<const unsigned> devicePositions, int channels);

/// Brings interleaved samples into the device's order, in place. A non-empty map has an entry per channel.
void reorderChannels(std::span<std::int16_t> samples, std::span<const std::size_t> channelMap);

}  // namespace tavek

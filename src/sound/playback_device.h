#pragma once

#include <cstddef>
#include <vector>

#include "sound/alsa_handles.h"

/// Opens ALSA's playback devices for interleaved signed 16-bit samples, and agrees the channels with device
/// and sink. ALSA itself is kept from printing.
namespace tavek {

struct PlaybackDevice {
  PcmHandle pcm;           ///< null while closed
  int outputChannels = 2;  ///< kept while closed
  /// For each slot of the device the channel that it takes; empty when the order is the same.
  std::vector<std::size_t> channelMap;
};

/// Tries the known device names in their order, and falls to two channels where the sink or the device takes
/// no more. Waits up to half a second for each name that is busy. Throws std::runtime_error.
PlaybackDevice openDevice(int channels, int rate);

/// The strict check of automatic mode: sink, hardware parameters and a trial set-up of the default device.
bool defaultDeviceTakes(int channels, int rate);

}  // namespace tavek

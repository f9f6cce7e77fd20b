#pragma once

#include "sound/pcm_device.h"

namespace tavek {

/// Opens ALSA's devices: tries the known names in their order, and falls to two channels where the sink or
/// the device takes no more. Waits up to half a second for each name that is busy. ALSA itself is kept from
/// printing.
PcmDeviceFactory alsaDeviceFactory();

}  // namespace tavek

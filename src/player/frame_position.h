#pragma once

#include <cstdint>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/rational.h>
}

namespace tavek {

/// Where a decoded frame lies in the item, in microseconds; 0 if nothing in it tells.
std::int64_t framePositionUs(const AVFrame& frame, AVRational timeBase);

}  // namespace tavek

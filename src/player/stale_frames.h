#pragma once

#include <cstdint>
#include <limits>

extern "C" {
#include <libavcodec/packet.h>
#include <libavutil/frame.h>
}

namespace tavek {

/// Some hardware decoders cannot be flushed: after a seek they first give the pictures of the place before.
/// Those are told by their time stamps, which lie outside of what was sent since the seek.
class StaleFrames {
 public:
  void seek();
  void sent(const AVPacket& packet);
  bool isStale(const AVFrame& frame);

 private:
  int watched_ = 0;  ///< so many frames may still be stale
  std::int64_t first_ = std::numeric_limits<std::int64_t>::max();
  std::int64_t last_ = std::numeric_limits<std::int64_t>::min();
};

}  // namespace tavek

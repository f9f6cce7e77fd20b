#include "player/stale_frames.h"

#include <algorithm>

namespace tavek {

void StaleFrames::seek() {
  // No decoder holds more; stamps of a decoder's own making must not cost the viewer the film.
  constexpr int mostHeld = 32;
  *this = {};
  watched_ = mostHeld;
}

void StaleFrames::sent(const AVPacket& packet) {
  for (const std::int64_t stamp : {packet.pts, packet.dts}) {
    if (stamp == AV_NOPTS_VALUE) continue;
    first_ = std::min(first_, stamp);
    last_ = std::max(last_, stamp);
  }
}

bool StaleFrames::isStale(const AVFrame& frame) {
  if (watched_ == 0) return false;
  const std::int64_t stamp = frame.best_effort_timestamp;
  const bool outside = stamp != AV_NOPTS_VALUE && first_ <= last_ && (stamp < first_ || stamp > last_);
  watched_ = outside ? watched_ - 1 : 0;
  return outside;
}

}  // namespace tavek

#include "player/frame_position.h"

#include <initializer_list>

extern "C" {
#include <libavutil/mathematics.h>
}

namespace tavek {

std::int64_t framePositionUs(const AVFrame& frame, AVRational timeBase) {
  for (const std::int64_t stamp : {frame.best_effort_timestamp, frame.pts, frame.pkt_dts}) {
    if (stamp != AV_NOPTS_VALUE) return av_rescale_q(stamp, timeBase, AVRational{1, 1'000'000});
  }
  return 0;
}

}  // namespace tavek

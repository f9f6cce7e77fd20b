#include "player/damage.h"

#include "media/error.h"

extern "C" {
#include <libavutil/error.h>
}

namespace tavek {
namespace {

constexpr std::int64_t patienceUs = 10'000'000;

}  // namespace

void Damage::goodFrame() {
  badSince_.reset();
}

void Damage::badPacket(std::int64_t positionUs) {
  if (!badSince_) badSince_ = positionUs;
  if (positionUs - *badSince_ >= patienceUs) throw ffmpeg::Error(AVERROR_INVALIDDATA);
}

}  // namespace tavek

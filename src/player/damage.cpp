#include "player/damage.h"

#include "media/error.h"

extern "C" {
#include <libavutil/error.h>
}

namespace tavek {
namespace {

constexpr std::int64_t patienceUs = 10'000'000;

[[noreturn]] void giveUp() {
  throw ffmpeg::Error(AVERROR_INVALIDDATA);
}

}  // namespace

void Damage::goodFrame() {
  anyGood_ = true;
  badSince_.reset();
}

void Damage::badPacket(std::int64_t positionUs) {
  anyBad_ = true;
  if (!badSince_) badSince_ = positionUs;
  if (positionUs - *badSince_ >= patienceUs) giveUp();
}

void Damage::end() const {
  if (anyBad_ && !anyGood_) giveUp();
}

}  // namespace tavek

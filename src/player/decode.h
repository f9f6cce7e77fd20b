#pragma once

#include "player/pipeline.h"

/// The send and receive rounds that both decoding threads share. `handle(frame, round)` gives false when its
/// receiver takes no more.
namespace tavek {

template <typename Handle>
bool Pipeline::decode(Stream& stream, const AVPacket* packet, unsigned round, AVFrame* scratch,
                      const Handle& handle) {
  for (bool sent = false; !sent && !stopping();) {
    {
      const std::lock_guard held(stream.decoderLock);
      // A packet from before a seek must not reach the decoder behind the seek's flush.
      if (round != seekRound_) return true;
      sent = stream.codec->sendPacket(packet) != Decoded::NotNow;
    }
    for (;;) {
      Decoded outcome{};
      {
        const std::lock_guard held(stream.decoderLock);
        outcome = stream.codec->receiveFrame(scratch);
      }
      if (outcome == Decoded::NotNow) break;
      if (outcome == Decoded::Done && !handle(scratch, round)) return false;
    }
  }
  return true;
}

template <typename Handle>
void Pipeline::drain(Stream& stream, AVFrame* scratch, const Handle& handle) {
  if (!stopping()) decode(stream, nullptr, seekRound_, scratch, handle);
}

}  // namespace tavek

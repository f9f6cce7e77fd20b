#include "player/stream_decoder.h"

#include <utility>

#include "media/error.h"
#include "player/frame_position.h"

namespace tavek {

StreamDecoder::StreamDecoder(std::unique_ptr<Codec> codec, AVRational timeBase, PacketQueue& packets,
                             Exchange& exchange)
    : exchange_(exchange),
      codec_(std::move(codec)),
      timeBase_(timeBase),
      packets_(packets),
      frame_(ffmpeg::makeFrame()) {
  if (!frame_) throw ffmpeg::Error("Failed to allocate decoded AVFrame");
}

void StreamDecoder::run() {
  Tagged<ffmpeg::PacketPtr> packet;
  while (!exchange_.stopping() && packets_.pop(packet)) {
    if (packet.seekRound != exchange_.round()) continue;
    enterRound(packet.seekRound);
    if (packet.item) sending(*packet.item);
    decode(packet.item.get());
    if (packet.item || !current()) continue;
    damage_.end();
    endRound();
  }
}

void StreamDecoder::enterRound(unsigned round) {
  const unsigned before = std::exchange(round_, round);
  if (before == 0 || before == round) return;
  codec_->flush();
  damage_.seek();
  seek();
}

/// A null packet drains the decoder.
void StreamDecoder::decode(const AVPacket* packet) {
  for (bool sent = false; !sent && current();) {
    sent = codec_->sendPacket(packet);
    while (current() && codec_->receiveFrame(frame_.get())) {
      damage_.goodFrame();
      takeFrame(*frame_);
      av_frame_unref(frame_.get());
    }
  }
}

std::int64_t StreamDecoder::positionUs(const AVFrame& frame) const {
  return framePositionUs(frame, timeBase_);
}

}  // namespace tavek

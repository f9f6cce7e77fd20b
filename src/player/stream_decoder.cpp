#include "player/stream_decoder.h"

#include <algorithm>
#include <utility>

#include "media/error.h"

extern "C" {
#include <libavutil/common.h>
#include <libavutil/mathematics.h>
}

namespace tavek {

StreamDecoder::StreamDecoder(std::unique_ptr<Codec> codec, StreamTime time, PacketQueue& packets,
                             Exchange& exchange)
    : exchange_(exchange),
      codec_(std::move(codec)),
      time_(time),
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

/// A null packet drains the decoder. One that is refused by a decoder with nothing to give is dropped.
void StreamDecoder::decode(const AVPacket* packet) {
  Decoded sent = Decoded::NotNow;
  for (bool moves = true; sent == Decoded::NotNow && moves && current();) {
    sent = codec_->sendPacket(packet);
    if (sent == Decoded::Damaged) noteDamage(packet);
    moves = receiveAll(packet);
  }
}

/// True if anything came.
bool StreamDecoder::receiveAll(const AVPacket* packet) {
  bool any = false;
  for (; current(); any = true) {
    const Decoded received = codec_->receiveFrame(frame_.get());
    if (received == Decoded::NotNow) break;
    if (received == Decoded::Damaged) {
      noteDamage(packet);
      continue;
    }
    damage_.goodFrame();
    exchange_.anyDecoded = true;
    takeFrame(*frame_);
    av_frame_unref(frame_.get());
  }
  return any;
}

void StreamDecoder::noteDamage(const AVPacket* packet) {
  damage_.badPacket(packet != nullptr ? place({packet->dts, packet->pts}) : lastPlaceUs_);
}

std::int64_t StreamDecoder::positionUs(const AVFrame& frame) {
  return place({frame.best_effort_timestamp, frame.pts, frame.pkt_dts});
}

std::int64_t StreamDecoder::place(std::initializer_list<std::int64_t> stamps) {
  for (const std::int64_t stamp : stamps) {
    if (stamp == AV_NOPTS_VALUE) continue;
    // Thirty years: no film is longer, and sums of what a damaged file claims stay in bounds.
    constexpr std::int64_t farthestUs = 1'000'000'000'000'000;
    const std::int64_t us = av_rescale_q(stamp, time_.timeBase, AVRational{1, 1'000'000});
    lastPlaceUs_ = std::clamp(av_sat_add64(us, time_.zeroUs), -farthestUs, farthestUs);
    break;
  }
  return lastPlaceUs_;
}

}  // namespace tavek

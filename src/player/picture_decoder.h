#pragma once

#include "media/conversion.h"
#include "player/stale_frames.h"
#include "player/stream_decoder.h"

namespace tavek {

/// Makes pictures for the screen from the packets of the picture stream.
class PictureDecoder final : public StreamDecoder {
 public:
  PictureDecoder(std::unique_ptr<Codec> codec, StreamTime time, Exchange& exchange)
      : StreamDecoder(std::move(codec), time, exchange.picturePackets, exchange) {}

 private:
  void seek() override { stale_.seek(); }
  void sending(const AVPacket& packet) override { stale_.sent(packet); }
  void takeFrame(AVFrame& frame) override;
  void endRound() override { send(nullptr); }

  ffmpeg::FramePtr toPicture(AVFrame& frame);
  AVFrame& softwareFrame(AVFrame& frame);
  void send(ffmpeg::FramePtr picture);

  StaleFrames stale_;
  std::unique_ptr<Conversion> conversion_;
  ffmpeg::FramePtr transferFrame_;
};

}  // namespace tavek

#pragma once

#include "media/handles.h"

namespace tavek {

/// A decoder for one stream, hardware before software. Not locked: its user serialises the calls.
class Codec {
 public:
  /// Throws ffmpeg::Error when nothing here can decode the stream. The parameters are copied.
  explicit Codec(const AVCodecParameters* parameters);

  /// False: not taken, frames must be received first or the decoder is drained. Null starts the draining.
  /// Throws ffmpeg::Error on any other failure.
  bool sendPacket(const AVPacket* packet);
  /// False: no frame is ready. Throws ffmpeg::Error on any other failure.
  bool receiveFrame(AVFrame* frame);
  /// Forgets all that was sent, as after a seek.
  void flush();

  int width() const { return context_->width; }
  int height() const { return context_->height; }
  AVPixelFormat pixelFormat() const { return context_->pix_fmt; }

 private:
  ffmpeg::CodecContextPtr context_;
};

}  // namespace tavek

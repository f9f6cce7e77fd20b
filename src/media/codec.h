#pragma once

#include "media/handles.h"

namespace tavek {

/// What became of a call of a decoder.
enum class Decoded {
  Done,
  NotNow,   ///< frames have to be received first, or packets sent; or it is drained
  Damaged,  ///< this piece of the stream makes no sense, the next one may
};

/// A decoder for one stream, hardware before software. Not locked: its user serialises the calls.
class Codec {
 public:
  /// Throws ffmpeg::Error when nothing here can decode the stream. The parameters are copied.
  explicit Codec(const AVCodecParameters* parameters);

  /// A packet that is taken or damaged is done with. Null starts the draining. Throws ffmpeg::Error on a
  /// failure of any other kind.
  Decoded sendPacket(const AVPacket* packet);
  /// The same.
  Decoded receiveFrame(AVFrame* frame);
  /// Forgets all that was sent, as after a seek.
  void flush();

  int width() const { return context_->width; }
  int height() const { return context_->height; }
  AVPixelFormat pixelFormat() const { return context_->pix_fmt; }

 private:
  ffmpeg::CodecContextPtr context_;
};

}  // namespace tavek

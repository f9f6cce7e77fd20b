#pragma once

#include "media/handles.h"

namespace tavek {

/// Turns decoded frames of one kind into pictures that a screen can take: planar YUV 4:2:0 in limited range,
/// in the matrix of the frame, or in BT.709 where no screen knows that. The light of HDR pictures is toned
/// down to what a screen shows.
class Conversion {
 public:
  /// For frames like this one. Throws std::runtime_error when the scaler cannot do it. The flags are SWS_...
  Conversion(const AVFrame& source, int scalerFlags);

  /// Size, format and colours are those that it was made for.
  bool fits(const AVFrame& source) const;
  /// A picture with the source's properties, in a buffer that comes back when the picture goes. Throws
  /// std::runtime_error.
  ffmpeg::FramePtr convert(const AVFrame& source);

 private:
  struct Kind {
    int width;
    int height;
    int format;
    AVColorSpace matrix;
    bool fullRange;
    bool pq;  ///< the transfer curve of HDR
    bool operator==(const Kind&) const = default;
  };
  static Kind kindOf(const AVFrame& frame);
  void toneDown(const AVFrame& source, AVFrame& picture);

  Kind kind_;
  AVColorSpace targetMatrix_;
  ffmpeg::SwsContextPtr context_;
  ffmpeg::BufferPoolPtr pool_;
  ffmpeg::FramePtr bright_;  ///< an HDR picture before its light is toned down
};

/// A picture in another pixel format, in full range if that is RGB: `destination` has its format, size and
/// planes. Throws std::runtime_error.
void convertOnce(const AVFrame& source, AVFrame& destination, int scalerFlags);

}  // namespace tavek

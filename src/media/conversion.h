#pragma once

#include "media/handles.h"

namespace tavek {

/// Turns pictures of one size from one pixel format to another, always to limited range.
class Conversion {
 public:
  /// Throws std::runtime_error when the scaler cannot do it. The flags are SWS_...
  Conversion(int width, int height, AVPixelFormat sourceFormat, AVPixelFormat destinationFormat,
             int scalerFlags);

  /// Both frames have their buffers; a null frame is passed over. Throws std::runtime_error.
  void convert(const AVFrame* source, AVFrame* destination);
  /// Made for such a source.
  bool fits(int width, int height, AVPixelFormat sourceFormat) const;

 private:
  int width_;
  int height_;
  AVPixelFormat sourceFormat_;
  ffmpeg::SwsContextPtr context_;
};

}  // namespace tavek

#pragma once

extern "C" {
#include <libavutil/frame.h>
}

namespace tavek {

/// What a song shows: one picture of 1280 by 720 for all of them, made on first use. Throws ffmpeg::Error.
const AVFrame* blackPicture();

}  // namespace tavek

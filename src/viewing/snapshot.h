#pragma once

struct AVFrame;

namespace tavek {

/// Writes the picture (planar YUV 4:2:0) as a PNG named after the local time into the library's folder of
/// snapshots, never over an existing file. A disk that takes no picture is left as it was, without a word.
void saveSnapshot(const AVFrame& picture);

}  // namespace tavek

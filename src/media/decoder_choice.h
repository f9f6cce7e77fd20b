#pragma once

#include <functional>
#include <span>

#include "media/handles.h"

namespace tavek {

/// What became of the attempt to open a decoder by its name. No context: it is of another codec or refused.
struct DecoderAttempt {
  bool inBuild = false;  ///< this FFmpeg knows the name
  ffmpeg::CodecContextPtr context;
};

/// The names of the box's decoders for a codec, best first; empty where software does.
std::span<const char* const> hardwareDecodersFor(AVCodecID codec);

/// Tries the viewer's own decoder (null or empty for none) and then the list. A list entry that opens
/// replaces the viewer's decoder, and one that the build has but that fails drops it.
ffmpeg::CodecContextPtr openHardwareDecoder(const char* ownDecoder, std::span<const char* const> names,
                                            const std::function<DecoderAttempt(const char*)>& attempt);

}  // namespace tavek

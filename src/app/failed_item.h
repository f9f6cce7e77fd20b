#pragma once

#include <string>

#include "media/error.h"

namespace tavek {

/// The line on stderr for an item that could not be played.
void tellFailed(const std::string& path, const ffmpeg::Error& error);

}  // namespace tavek

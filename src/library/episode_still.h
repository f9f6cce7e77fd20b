#pragma once

#include <filesystem>

#include "base/process_flags.h"

namespace tavek {

/// Where the still of an episode lies: <stem>-thumb.jpg beside it.
std::filesystem::path episodeStillOf(const std::filesystem::path& video);

/// Cuts a still of 320 x 480 out of a video, 15 percent into it, unless a usable file is there already. Runs
/// ffprobe and ffmpeg, waits for them and kills them once `stop` is set. Tells nothing: the caller looks at
/// the file afterwards, since a failing ffmpeg may leave something behind.
void makeEpisodeThumb(const std::filesystem::path& video, const std::filesystem::path& thumb,
                      const Flag& stop);

}  // namespace tavek

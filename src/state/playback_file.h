#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "state/json_read.h"

namespace tavek {

/// What is remembered beside the media, for whoever plays them: one file for all media of a folder.
struct PlaybackFile {
  std::optional<std::int64_t> offset;    ///< the last position, microseconds
  std::optional<std::int64_t> boundary;  ///< the seek boundary, microseconds
  std::optional<double> volume;          ///< gain in dB
  std::optional<std::string> sound;      ///< sound mode; only kept
  std::optional<bool> watched;
  std::vector<JsonMember> unknown;  ///< what a newer program wrote
};

/// From any text, as far as it can be found.
PlaybackFile parsePlayback(const std::string& text);
/// What of it has a value, rendered, in the order of the file.
std::vector<JsonMember> playbackMembers(const PlaybackFile& playback);

/// The nearest playback.json from the media's folder up to its room; where there is none, or outside of the
/// rooms, that of the media's folder.
std::filesystem::path playbackFileOf(const std::string& media);
/// A damaged file is rewritten from what was found.
PlaybackFile readPlayback(const std::filesystem::path& file);
/// Writes nothing where nothing has a value.
void writePlayback(const std::filesystem::path& file, const PlaybackFile& playback);

}  // namespace tavek

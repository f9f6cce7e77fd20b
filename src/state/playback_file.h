#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/process_flags.h"
#include "state/json_read.h"

namespace tavek {

/// What one media file has for itself where several share a folder.
struct MediaPlace {
  std::optional<std::int64_t> offset;    ///< the last position, microseconds
  std::optional<std::int64_t> boundary;  ///< the seek boundary, microseconds
  std::optional<bool> watched;
  std::vector<JsonMember> unknown;  ///< what a newer program wrote
};

/// What is remembered beside the media, for whoever plays them: one file for all media of a folder.
struct PlaybackFile {
  std::optional<std::int64_t> offset;    ///< the last position, microseconds
  std::optional<std::int64_t> boundary;  ///< the seek boundary, microseconds
  std::optional<double> volume;          ///< gain in dB
  std::optional<std::string> sound;      ///< sound mode; only kept
  std::optional<bool> watched;
  /// By the path below the file's folder, which is the file name where no folders lie between. Empty in a
  /// folder with one medium.
  std::map<std::string, MediaPlace> positions;
  std::vector<JsonMember> unknown;  ///< what a newer program wrote
};

/// From any text, as far as it can be found.
PlaybackFile parsePlayback(const std::string& whole);
/// What of it has a value, rendered, in the order of the file.
std::vector<JsonMember> playbackMembers(const PlaybackFile& playback);

/// The nearest playback.json from the media's folder up to its room; where there is none, or outside of the
/// rooms, that of the media's folder.
std::filesystem::path playbackFileOf(const std::string& media);
/// True if another medium of the kind is served by the folder's playback.json too. Walks the folder, and the
/// tree below it where the file serves that; gives up with true once `stop` is set.
bool servesOthers(const std::filesystem::path& folder, const std::string& media, const Flag& stop);

}  // namespace tavek

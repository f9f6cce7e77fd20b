#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tavek {

/// What the tags of an audio file tell. An empty text is not known.
struct TrackInfo {
  std::string title;
  std::string artist;  ///< else the album's artist, else the composer
  std::string album;
  std::string track;  ///< the digits of its number, with leading zeros
  std::string year;   ///< at most four digits
  std::string genre;
  std::string duration;  ///< "03:07", "1:03:07"
};

/// Opens the file, unless it is known by its size and time of change; none for one that does not open. What
/// was found is kept for the life of the process, of 20,000 files at most. Any thread but the main one.
std::optional<TrackInfo> trackInfo(const std::filesystem::path& path);
/// What is kept of a file, without a look at the disk. Any thread.
std::optional<TrackInfo> knownTrackInfo(const std::filesystem::path& path);

/// The first run of digits in a text, `longest` of them at most.
std::string_view firstDigits(std::string_view text, std::size_t longest = std::string_view::npos);
/// Empty below a microsecond.
std::string durationText(std::int64_t us);

}  // namespace tavek

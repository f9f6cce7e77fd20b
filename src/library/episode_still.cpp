#include "library/episode_still.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <system_error>

#include "base/run_tool.h"
#include "base/text.h"
#include "library/file_types.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// A path as an argument. A relative one must not be taken for an option or for a protocol.
std::string argumentOf(const fs::path& path) {
  return path.is_relative() ? "./" + path.string() : path.string();
}

/// In seconds; none for a video of unknown length. The locale must not decide how a number is read or
/// written.
std::optional<double> lengthOf(const fs::path& video, const Flag& stop) {
  const ToolResult probe =
      runTool({.arguments = {toolPath("ffprobe"), "-v", "error", "-show_entries", "format=duration", "-of",
                             "default=noprint_wrappers=1:nokey=1", argumentOf(video)}},
              stop);
  const std::string output = trim(probe.output);
  double seconds = 0;
  std::from_chars(output.data(), output.data() + output.size(), seconds);
  return seconds > 0 ? std::optional(seconds) : std::nullopt;
}

std::string withThreeDecimals(double seconds) {
  std::array<char, 320> text{};  // the greatest double has 309 digits
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), seconds, std::chars_format::fixed, 3);
  return {text.data(), end};
}

}  // namespace

fs::path episodeStillOf(const fs::path& video) {
  return video.parent_path() / (video.stem().string() + "-thumb.jpg");
}

void makeEpisodeThumb(const fs::path& video, const fs::path& thumb, const Flag& stop) {
  if (isUsableFile(thumb) || video.empty() || thumb.empty()) return;
  const std::optional<double> length = lengthOf(video, stop);
  if (!length) return;
  const ToolResult result =
      runTool({.arguments = {toolPath("ffmpeg"), "-y", "-loglevel", "error", "-ss",
                             withThreeDecimals(0.15 * *length), "-i", argumentOf(video), "-frames:v", "1",
                             "-vf", "scale=320:480:force_original_aspect_ratio=increase,crop=320:480", "-q:v",
                             "3", argumentOf(thumb)}},
              stop);
  // Half a picture would pass for a still for ever after.
  std::error_code ignored;
  if (result.end == ToolEnd::Killed) fs::remove(thumb, ignored);
}

}  // namespace tavek

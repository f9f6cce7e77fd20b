#include "library/episode_still.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "base/text.h"
#include "base/tools.h"
#include "library/usable_file.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

struct PipeCloser {
  void operator()(std::FILE* pipe) const { pclose(pipe); }
};

/// A path as an argument. A relative one must not be taken for an option or for a protocol.
std::string argumentOf(const fs::path& path) {
  return shellQuote(path.is_relative() ? "./" + path.string() : path.string());
}

std::string outputOf(const std::string& command) {
  std::string output;
  const std::unique_ptr<std::FILE, PipeCloser> pipe(popen(command.c_str(), "r"));
  std::array<char, 256> piece{};
  while (pipe && std::fgets(piece.data(), static_cast<int>(piece.size()), pipe.get()) != nullptr) {
    output += piece.data();
  }
  return output;
}

/// In seconds; none for a video of unknown length. The locale must not decide how a number is read or
/// written.
std::optional<double> lengthOf(const fs::path& video) {
  const std::string output = trim(outputOf(
      toolCommand("ffprobe") +
      " -v error -show_entries format=duration -of default=noprint_wrappers=1:nokey=1 " + argumentOf(video)));
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

void makeEpisodeThumb(const fs::path& video, const fs::path& thumb) {
  if (isUsableFile(thumb) || video.empty() || thumb.empty()) return;
  const std::optional<double> length = lengthOf(video);
  if (!length) return;
  const std::string command =
      toolCommand("ffmpeg") + " -y -loglevel error -ss " + withThreeDecimals(0.15 * *length) + " -i " +
      argumentOf(video) +
      R"( -frames:v 1 -vf "scale=320:480:force_original_aspect_ratio=increase,crop=320:480" -q:v 3 )" +
      argumentOf(thumb);
  // Whatever the exit status says, the file tells.
  [[maybe_unused]] const int status = std::system(command.c_str());
}

}  // namespace tavek

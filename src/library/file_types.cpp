#include "library/file_types.h"

#include <algorithm>
#include <array>
#include <system_error>

extern "C" {
#include <libavformat/avformat.h>
}

#include "base/text.h"

namespace tavek {
namespace {

using namespace std::string_view_literals;

constexpr std::array audioExtensions{".aac"sv, ".aif"sv, ".aiff"sv, ".alac"sv, ".flac"sv, ".m4a"sv,
                                     ".mp3"sv, ".ogg"sv, ".opus"sv, ".wav"sv,  ".wma"sv};
static_assert(std::ranges::is_sorted(audioExtensions));

constexpr std::array videoExtensions{".mp4"sv, ".mkv"sv,  ".mov"sv,  ".avi"sv, ".m4v"sv,  ".ts"sv,  ".m2ts"sv,
                                     ".flv"sv, ".webm"sv, ".wmv"sv,  ".mpg"sv, ".mpeg"sv, ".mpe"sv, ".mp2"sv,
                                     ".ogv"sv, ".3gp"sv,  ".3gpp"sv, ".3g2"sv, ".vob"sv,  ".f4v"sv, ".mxf"sv,
                                     ".mts"sv, ".m2v"sv,  ".rm"sv,   ".rmvb"sv};

// Some demuxers read still images, but a poster must never count as a video.
constexpr std::array imageExtensions{".bmp"sv, ".gif"sv, ".jpeg"sv, ".jpg"sv,
                                     ".png"sv, ".tif"sv, ".tiff"sv, ".webp"sv};

// Nor must what lies beside a film: subtitles, and notes, which a demuxer would show as pictures of a
// terminal.
constexpr std::array companionExtensions{
    ".ans"sv, ".aqt"sv,  ".art"sv, ".asc"sv, ".ass"sv, ".diz"sv,  ".ice"sv,  ".idx"sv, ".jss"sv,
    ".lrc"sv, ".mpl2"sv, ".nfo"sv, ".pjs"sv, ".psb"sv, ".rt"sv,   ".sami"sv, ".scc"sv, ".smi"sv,
    ".srt"sv, ".ssa"sv,  ".stl"sv, ".sub"sv, ".sup"sv, ".ttml"sv, ".txt"sv,  ".vt"sv,  ".vtt"sv};

constexpr std::array extraStems{"sample"sv, "theme"sv, "trailer"sv};
constexpr std::array extraEndings{"-sample"sv, "-trailer"sv};

}  // namespace

std::set<std::string> demuxerExtensions() {
  std::set<std::string> extensions;
  void* position = nullptr;
  while (const AVInputFormat* demuxer = av_demuxer_iterate(&position)) {
    std::string_view rest = demuxer->extensions != nullptr ? demuxer->extensions : "";
    while (!rest.empty()) {
      const std::size_t length = std::min(rest.find(','), rest.size());
      if (length > 0) extensions.emplace(rest.substr(0, length));
      rest.remove_prefix(std::min(length + 1, rest.size()));
    }
  }
  return extensions;
}

std::set<std::string, std::less<>> completeVideoExtensions(const std::set<std::string>& fromDemuxers) {
  std::set<std::string, std::less<>> complete(videoExtensions.begin(), videoExtensions.end());
  for (const std::string& extension : fromDemuxers) {
    complete.insert((extension.starts_with('.') ? "" : ".") + toLower(extension));
  }
  for (const std::string_view image : imageExtensions) complete.erase(std::string(image));
  for (const std::string_view companion : companionExtensions) complete.erase(std::string(companion));
  return complete;
}

bool isAudioFile(const std::filesystem::path& path) {
  return std::ranges::binary_search(audioExtensions, std::string_view(lowerExtension(path)));
}

bool isVideoFile(const std::filesystem::path& path) {
  return isVideoExtension(lowerExtension(path));
}

bool isVideoExtension(std::string_view extension) {
  static const auto complete = completeVideoExtensions(demuxerExtensions());
  return complete.contains(extension);
}

bool isExtra(std::string_view stem) {
  const std::string lower = toLower(stem);
  return std::ranges::find(extraStems, lower) != extraStems.end() ||
         std::ranges::any_of(extraEndings, [&](std::string_view ending) { return lower.ends_with(ending); });
}

bool isFilm(const std::filesystem::path& path) {
  return isVideoFile(path) && !isExtra(path.stem().string());
}

bool isUsableFile(const std::filesystem::path& file) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return false;
  const auto size = std::filesystem::file_size(file, error);
  return !error && size > 0;
}

}  // namespace tavek

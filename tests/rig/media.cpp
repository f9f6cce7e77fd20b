#include "rig/media.h"

#include <cmath>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

#include "rig/screen.h"

namespace tavek::rig {
namespace {

constexpr int rawRows = 12;

double numberOf(const std::string& rate) {
  const std::size_t slash = rate.find('/');
  return std::stod(rate) / (slash == std::string::npos ? 1 : std::stod(rate.substr(slash + 1)));
}

// Tiny pictures, one cell per pixel, which ffmpeg scales up.
std::string rawPictures(const Clip& clip) {
  std::string bytes;
  const double rate = numberOf(clip.rate);
  for (int n = 0; n < std::lround(clip.seconds * rate); ++n) {
    std::string strip;
    for (const bool cell : stripOf(clip.firstNumber + n)) strip += cell ? '\xff' : '\0';
    const double time = n / rate;
    const char body = time - std::floor(time) < 0.1 ? '\xff' : '\0';
    bytes += strip + strip + std::string((rawRows - 2) * stripCells, body);
  }
  return bytes;
}

std::string pictureFilters(const Clip& clip) {
  const std::string size = std::to_string(clip.width) + ":";
  if (clip.backdrop.empty())
    return "[0:v]scale=" + size + std::to_string(clip.height) + ":flags=neighbor,format=yuv420p," +
           clip.filters;
  return "[0:v]crop=20:4:0:0,scale=" + size + std::to_string(clip.height / 3) + ":flags=neighbor[n];" +
         clip.backdrop + "[b];[b][n]overlay=shortest=1,format=yuv420p," + clip.filters;
}

}  // namespace

fs::path makeFile(const std::string& words, const std::string& extension, const fs::path& folder) {
  fs::create_directories(folder);
  const fs::path file = folder / (std::to_string(std::hash<std::string>()(words)) + "." + extension);
  if (fs::exists(file)) return file;
  // Made under a name of its own and then moved, so that nobody meets half a file.
  const fs::path draft = folder / (std::to_string(getpid()) + "-" + file.filename().string());
  std::vector<std::string> arguments{"ffmpeg", "-v", "error", "-nostdin", "-y"};
  std::istringstream stream(words);
  for (std::string word; stream >> word;) arguments.push_back(word == "OUT" ? draft.string() : word);
  Program ffmpeg(arguments, {});
  if (!ffmpeg.waitForEnd(600) || ffmpeg.status() != 0)
    throw std::runtime_error(words + "\n" + ffmpeg.errors());
  fs::rename(draft, file);
  return file;
}

fs::path makeClip(const Clip& clip, const fs::path& folder) {
  fs::create_directories(folder);
  const std::string key =
      clip.rate + "-" + std::to_string(clip.seconds) + "-" + std::to_string(clip.firstNumber);
  fs::path raw = folder / (std::to_string(std::hash<std::string>()(key)) + ".raw");
  if (!fs::exists(raw)) {
    const fs::path draft = raw.string() + std::to_string(getpid());
    writeText(draft, rawPictures(clip));
    fs::rename(draft, raw);
  }
  std::ostringstream words;
  words << "-f rawvideo -pix_fmt gray -video_size " << stripCells << "x" << rawRows << " -framerate "
        << clip.rate << " -i " << raw.string();
  if (!clip.sound.empty())
    words << " -f lavfi -i aevalsrc=" << clip.sound << ":s=" << clip.soundRate << ":d=" << clip.seconds;
  if (!clip.video.empty())
    words << " -filter_complex " << pictureFilters(clip) << "[v] -map [v] " << clip.video;
  if (!clip.sound.empty()) words << " -map 1:a " << clip.audio;
  words << " OUT";
  return makeFile(words.str(), clip.container, folder);
}

void addTone(const std::filesystem::path& file, int pitch, double seconds, const std::filesystem::path& kept,
             const std::string& words) {
  std::filesystem::create_directories(file.parent_path());
  std::filesystem::copy_file(
      makeFile("-f lavfi -i aevalsrc=0.5*sin(" + std::to_string(2 * pitch) +
                   "*PI*t):s=48000:d=" + std::to_string(seconds) + " " + words + " OUT",
               file.extension().string().substr(1), kept),
      file, std::filesystem::copy_options::skip_existing);
}

}  // namespace tavek::rig

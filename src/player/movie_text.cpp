#include "player/movie_text.h"

#include <iomanip>
#include <sstream>

namespace tavek {
namespace {

std::string formatName(const MovieInfo& info) {
  if (info.containerLongName.empty()) return info.containerName;
  if (info.containerName.empty()) return info.containerLongName;
  return info.containerLongName + " (" + info.containerName + ")";
}

std::string nameOr(const std::string& name, const char* fallback) {
  return name.empty() ? fallback : name;
}

}  // namespace

std::string movieText(const std::string& path, const MovieInfo& info) {
  std::ostringstream text;
  text << std::fixed << "[movie] " << path << '\n' << "        format: " << formatName(info) << '\n';
  text << "        video : " << nameOr(info.videoCodecName, "unknown");
  if (info.videoWidth > 0 && info.videoHeight > 0) text << ' ' << info.videoWidth << 'x' << info.videoHeight;
  if (info.videoFramesPerSecond > 0)
    text << ' ' << std::setprecision(2) << info.videoFramesPerSecond << "fps";
  text << '\n' << "        audio : " << nameOr(info.audioCodecName, "none");
  if (info.audioChannels > 0) text << ' ' << info.audioChannels << "ch";
  if (info.audioSampleRate > 0) text << ' ' << info.audioSampleRate << "Hz";
  text << '\n';
  if (info.durationUs > 0) {
    text << "        length: " << std::setprecision(1) << static_cast<double>(info.durationUs) / 1e6 << "s\n";
  }
  return text.str();
}

}  // namespace tavek

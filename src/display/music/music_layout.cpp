#include "display/music/music_layout.h"

#include <algorithm>
#include <string_view>

namespace tavek {
namespace {

std::string joined(std::string_view first, std::string_view separator, std::string_view second) {
  std::string text(first);
  if (!first.empty() && !second.empty()) text += separator;
  return text.append(second);
}

}  // namespace

TrackLines trackLines(const std::filesystem::path& file, const std::optional<TrackInfo>& info) {
  if (!info) return {file.stem().string()};
  const std::string number = info->track.empty() ? "" : "Track " + info->track;
  return {info->title.empty() ? file.stem().string() : info->title, joined(info->artist, " - ", info->album),
          joined(joined(number, " | ", info->duration), " | ", info->year)};
}

TrackLines restingLines(const std::filesystem::path& file, const std::optional<TrackInfo>& info) {
  if (!info) return {file.stem().string()};
  return {info->title.empty() ? file.stem().string() : info->title, joined(info->artist, " — ", info->album),
          info->year};
}

int titleFontSize(int windowHeight) {
  return std::clamp(windowHeight / 20, 20, 42);
}

int detailFontSize(int windowHeight) {
  return std::clamp(windowHeight / 28, 14, 30);
}

int columnFontSize(int windowHeight) {
  return std::clamp(windowHeight / 36, 14, 24);
}

int trackMargin(int windowWidth) {
  return windowWidth < 480 ? 24 : std::min(windowWidth / 20, 60);
}

int nowPlayingTop(SDL_Point window, int blockHeight) {
  const int below = window.y < 448 ? 32 : std::min(window.y / 14, 120);
  return std::max(window.y - blockHeight - below, trackMargin(window.x));
}

int blockTopAbove(SDL_Point window, int edge, int blockHeight) {
  const int margin = trackMargin(window.x);
  return std::max(edge - blockHeight - (edge < window.y ? 12 : margin), margin);
}

ColumnLayout layoutColumn(SDL_Point window, int edge, int lineHeight, std::size_t tracks,
                          std::size_t current) {
  const int pad = window.x < 480 ? 20 : std::min(window.x / 24, 48);
  const int width = window.x < 520 ? 260 : std::min(window.x / 2, 520);
  const int room = std::max((window.y - 2 * pad) / lineHeight, 0);
  ColumnLayout layout;
  layout.rows = std::min(static_cast<std::size_t>(room), tracks);
  const std::size_t half = layout.rows / 2;
  layout.first = std::min(current > half ? current - half : 0, tracks - layout.rows);
  const int height = lineHeight * static_cast<int>(layout.rows) + 2 * columnInset;
  layout.panel = {window.x - width - pad, std::max(edge - height - pad, pad), width, height};
  return layout;
}

}  // namespace tavek

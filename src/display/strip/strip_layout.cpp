#include "display/strip/strip_layout.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "library/episode_name.h"
#include "library/file_types.h"

namespace tavek {
namespace {

constexpr double slotsPerWidth = 11.25;
constexpr double selectedGrowth = 1.25;
constexpr int slotsBeforeSelection = 5;
constexpr double slideMs = 120;

struct Size {
  double width;
  double height;
};

Size posterSize(int width, double slot, bool selected) {
  const double ratio = std::min(slot / width, 1.0);
  Size size{width * ratio, posterHeight * ratio};
  if (!selected) return size;
  size = {size.width * selectedGrowth, size.height * selectedGrowth};
  if (size.width > slot) size = {slot, size.height * slot / size.width};
  return size;
}

int rounded(double value) {
  return static_cast<int>(std::lround(value));
}

}  // namespace

std::size_t stripScrollFor(int selected, std::size_t count) {
  if (count <= postersOnScreen || selected <= slotsBeforeSelection) return 0;
  return std::min(static_cast<std::size_t>(selected - slotsBeforeSelection), count - postersOnScreen);
}

double stripReveal(const StripState& strip, Uint64 nowMs) {
  if (!strip.sliding) return strip.visible ? 1 : 0;
  const double t =
      nowMs > strip.slideAt ? std::min(static_cast<double>(nowMs - strip.slideAt) / slideMs, 1.0) : 0;
  return strip.slidingIn ? t : 1 - t;
}

double stripTop(int windowHeight, double reveal) {
  return windowHeight - stripHeight + (1 - reveal) * stripHeight;
}

StripLayout layoutStrip(std::span<const int> widths, int selected, int windowWidth, double top) {
  StripLayout layout;
  double x = 0;
  for (std::size_t i = 0; i < widths.size() && layout.count < postersOnScreen; ++i) {
    if (widths[i] <= 0) continue;
    const bool isSelected = static_cast<int>(i) == selected;
    const double slot = windowWidth / slotsPerWidth * (isSelected ? selectedGrowth : 1);
    const Size size = posterSize(widths[i], slot, isSelected);
    layout.slots[layout.count++] = {
        i,
        {rounded(x + (slot - size.width) / 2), rounded(top + stripHeight / 2.0 - size.height / 2),
         rounded(size.width), rounded(size.height)}};
    x += slot;
  }
  return layout;
}

std::string stripLabel(int seriesDepth, const std::filesystem::path& poster) {
  if (seriesDepth == 1 && !isVideoFile(poster)) {
    const std::string season = seasonOfFolder(poster.parent_path().filename().string());
    return season.empty() ? "" : "Season " + shownSeason(season);
  }
  if (seriesDepth < 1) return {};
  const EpisodeLabel label = episodeLabelOf(poster.stem().string());
  if (label.season.empty() || label.episode.empty()) return {};
  return trim("Season " + shownSeason(label.season) + ", " + shownEpisode(label.episode) + " " + label.title);
}

}  // namespace tavek

#include "display/screensaver/caption_layout.h"

#include <algorithm>

namespace tavek {
namespace {

constexpr int lineGap = 4;
constexpr int blockGap = 12;

SDL_Point badgePlace(const CaptionSizes& sizes, int margin, SDL_Point year) {
  const int lowest = sizes.window.y - margin - sizes.badge.y;
  int y = lowest;
  if (sizes.year.y > 0) y = std::min(year.y + sizes.year.y + blockGap, lowest);
  return {sizes.window.x - margin - sizes.badge.x, std::max(y, margin)};
}

SDL_Rect logoPlace(const CaptionSizes& sizes, int margin, int overviewTop) {
  const int wished = sizes.lines > 0 ? overviewTop - blockGap - sizes.logo.y : margin;
  const int lowest = std::max(sizes.window.y - margin - sizes.logo.y, margin);
  return {margin, std::min(wished, lowest), sizes.logo.x, sizes.logo.y};
}

}  // namespace

CaptionFonts captionFonts(int height) {
  return {.year = height < 240 ? 40 : std::min(height / 6, 96),
          .title = height < 432 ? 72 : 3 * std::min(height / 18, 42),
          .overview = std::clamp(height / 20, 24, 44),
          .badge = std::clamp(height / 28, 18, 30),
          .tag = std::clamp(height / 40, 16, 24)};
}

int captionMargin(int width) {
  return width < 720 ? 24 : std::min(width / 30, 64);
}

int overviewWidth(int width) {
  const int whole = width - 2 * captionMargin(width);
  if (whole <= 259) return std::max(whole, 1);
  return std::max(std::min(whole, static_cast<int>(0.55 * width)), 260);
}

int overviewLineLimit(int height, int lineHeight) {
  return std::clamp(height / 3 / std::max(lineHeight, 1), 2, 6);
}

SDL_Point logoArea(SDL_Point window) {
  return {std::max(static_cast<int>(0.28 * window.x), 1), std::max(static_cast<int>(0.2 * window.y), 1)};
}

const char* resolutionBadge(SDL_Point size) {
  const auto [shorter, longer] = std::minmax(size.x, size.y);
  if (longer >= 3840 && shorter >= 2160) return "4K";
  if (longer >= 1920 && shorter >= 1080) return "FHD";
  return longer >= 1280 && shorter >= 720 ? "HD" : "";
}

CaptionPlaces placeCaption(const CaptionSizes& sizes) {
  const int margin = captionMargin(sizes.window.x);
  const int bottom = sizes.window.y - margin;
  CaptionPlaces places;
  places.year = {sizes.window.x - margin - sizes.year.x, std::max(bottom - sizes.year.y - 20, margin)};
  places.badge = badgePlace(sizes, margin, places.year);
  const int overviewTop = std::max(bottom - (sizes.lineHeight * sizes.lines - lineGap), margin);
  places.overview = {margin, overviewTop};
  places.logo = logoPlace(sizes, margin, overviewTop);
  const int titleBottom = sizes.lines > 0 ? overviewTop - blockGap : bottom;
  places.title = {margin, std::max(titleBottom - sizes.title.y, margin)};
  const int underLogo = sizes.logo.y > 0 ? std::clamp(sizes.tag.y + 16, 18, 36) : 0;
  places.tagBox = {margin, margin + underLogo, sizes.tag.x + 16, sizes.tag.y + 8};
  places.tag = {places.tagBox.x + 8, places.tagBox.y + 4};
  return places;
}

}  // namespace tavek

#include "display/home/home_layout.h"

#include <algorithm>
#include <cmath>

namespace tavek {
namespace {

constexpr double leastRadius = 48;

struct Area {
  int margin;
  int width;
  int height;
  double gap;  ///< between the discs
};

Area areaOf(int width, int height) {
  const int shorter = std::min(width, height);
  const int margin = shorter < 400 ? 40 : std::min(shorter / 10, 140);
  const int areaWidth = std::max(width - 2 * margin, 1);
  const int areaHeight = std::max(height - 2 * margin, 1);
  return {margin, areaWidth, areaHeight, std::clamp(0.035 * std::min(areaWidth, areaHeight), 14.0, 36.0)};
}

struct Grid {
  int rows = 1;
  double radius = leastRadius;
};

Grid bestGrid(int users, const Area& area, int shorter) {
  Grid best{1, -1e9};
  for (int rows = 1; rows <= users; ++rows) {
    const int columns = (users + rows - 1) / rows;
    const double cell =
        std::min(static_cast<double>(area.height) / rows, static_cast<double>(area.width) / columns);
    const double radius = cell / 2 - area.gap;
    if (radius > best.radius) best = {rows, radius};
  }
  best.radius = std::max(std::min(best.radius, shorter / 3.0), leastRadius);
  return best;
}

int discRadius(double cellWidth, double cellHeight, const Area& area, double wanted) {
  const double across = cellWidth / 2 - std::min(area.gap, cellWidth / 4);
  const double down = cellHeight / 2 - std::min(area.gap, cellHeight / 4);
  if (across >= wanted && down >= wanted) return static_cast<int>(wanted);
  return std::max(static_cast<int>(std::min(across, down)), 8);
}

}  // namespace

HomeLayout layoutHome(int users, int width, int height) {
  const Area area = areaOf(width, height);
  HomeLayout layout;
  layout.hintTop = area.margin + area.height + 40;
  if (users < 1) return layout;

  const Grid grid = bestGrid(users, area, std::min(width, height));
  layout.rows = grid.rows;
  const double cellHeight = static_cast<double>(area.height) / grid.rows;
  for (int row = 0; row < grid.rows; ++row) {
    const int inRow = users / grid.rows + (row < users % grid.rows ? 1 : 0);
    const double cellWidth = static_cast<double>(area.width) / inRow;
    const int radius = discRadius(cellWidth, cellHeight, area, grid.radius);
    for (int column = 0; column < inRow; ++column) {
      const SDL_Point centre{area.margin + static_cast<int>(cellWidth * (column + 0.5)),
                             area.margin + static_cast<int>(cellHeight * (row + 0.5))};
      layout.discs.push_back({centre, radius, radius > 34 ? radius / 5 : 6});
    }
  }
  layout.smallestRadius = std::ranges::min(layout.discs, {}, &UserDisc::radius).radius;
  return layout;
}

int roomFontSize(int radius) {
  return radius <= 65 ? 10 : std::clamp(static_cast<int>(radius / 6.0 * 0.7), 10, 56);
}

int roomTextWidth(int radius) {
  return radius <= 41 ? 20 : radius / 2;
}

RoomBox layoutRoomBox(const UserDisc& disc, SDL_Point widestLabel) {
  const int r = disc.radius;
  const bool small = r < 60;
  const int pad = small ? 4 : r / 12;
  const int left = 2 * pad;
  const int right = small ? 6 : std::max(pad, 6);
  const int topPad = small ? 2 : r / 20;
  const int height = widestLabel.y + 2 * topPad;

  RoomBox room{};
  room.arrowHeight = height < 20 ? 4 : height / 4;
  room.arrowWidth = 2 * room.arrowHeight;
  room.arrowGap = height < 20 || room.arrowHeight == 5 ? 2 : height / 8;

  const int width = left + widestLabel.x + room.arrowWidth + right;
  const int textTop = disc.centre.y + 2 * (r / 4) - widestLabel.y / 2;
  room.box = {disc.centre.x - width / 2, textTop - topPad, width, height};
  room.text = {room.box.x + pad, textTop};
  room.arrows = {room.box.x + width - room.arrowWidth - pad,
                 room.box.y + (height - (room.arrowGap + room.arrowWidth)) / 2};
  return room;
}

}  // namespace tavek

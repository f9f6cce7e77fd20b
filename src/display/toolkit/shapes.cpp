#include "display/toolkit/shapes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace tavek {
namespace {

/// Steps per quarter circle that keep a polygon within a tenth of a pixel of its circle.
int quarterSteps(float radius) {
  return std::max(4, static_cast<int>(std::ceil(1.8F * std::sqrt(radius))));
}

/// The outline of a rectangle whose short sides are half circles; of a square, a circle.
std::vector<SDL_FPoint> pillOutline(const SDL_FRect& rect) {
  const float radius = std::min(rect.w, rect.h) / 2;
  const int steps = quarterSteps(radius);
  std::vector<SDL_FPoint> points;
  for (int quarter = 0; quarter < 4; ++quarter) {
    const float x = quarter == 0 || quarter == 3 ? rect.x + rect.w - radius : rect.x + radius;
    const float y = quarter < 2 ? rect.y + rect.h - radius : rect.y + radius;
    for (int step = 0; step <= steps; ++step) {
      const float turns = static_cast<float>(quarter) + static_cast<float>(step) / static_cast<float>(steps);
      const float angle = turns * std::numbers::pi_v<float> / 2;
      points.push_back({x + radius * std::cos(angle), y + radius * std::sin(angle)});
    }
  }
  return points;
}

SDL_FRect squareAround(SDL_FPoint centre, float radius) {
  return {centre.x - radius, centre.y - radius, 2 * radius, 2 * radius};
}

void drawTriangles(SDL_Renderer* renderer, const std::vector<SDL_Vertex>& vertices,
                   const std::vector<int>& corners) {
  SDL_RenderGeometry(renderer, nullptr, vertices.data(), static_cast<int>(vertices.size()), corners.data(),
                     static_cast<int>(corners.size()));
}

void fillConvex(SDL_Renderer* renderer, const std::vector<SDL_FPoint>& outline, Colour colour) {
  std::vector<SDL_Vertex> vertices;
  vertices.reserve(outline.size());
  for (const SDL_FPoint& point : outline) vertices.push_back({point, toSdl(colour), {0, 0}});
  std::vector<int> fan;
  for (int i = 2; i < static_cast<int>(vertices.size()); ++i) fan.insert(fan.end(), {0, i - 1, i});
  drawTriangles(renderer, vertices, fan);
}

void drawRim(SDL_Renderer* renderer, int centreX, int centreY, int radius, Colour rim) {
  for (int row = -radius; row <= radius; ++row) {
    const double edge = std::sqrt((static_cast<double>(radius) - row) * (static_cast<double>(radius) + row));
    const int reach = static_cast<int>(edge);
    setDrawColour(renderer, withAlpha(rim, static_cast<std::uint8_t>(alphaOf(rim) * (edge - reach))));
    SDL_RenderDrawPoint(renderer, centreX - reach, centreY + row);
    SDL_RenderDrawPoint(renderer, centreX + reach, centreY + row);
  }
}

/// A disc that fills its picture, with a smooth edge.
SurfacePtr discPicture(int radius, int ring, Colour colour) {
  const int core = ring < radius ? radius - std::max(ring, 0) : radius;
  const int reach = core + std::max(ring - 1, 0);
  const int side = 2 * reach + 1;
  SurfacePtr picture(SDL_CreateRGBSurfaceWithFormat(0, side, side, 32, SDL_PIXELFORMAT_ARGB8888));
  if (!picture) return picture;
  const Uint32 hue = SDL_MapRGB(picture->format, redOf(colour), greenOf(colour), blueOf(colour)) & 0xFFFFFF;
  const float thinning = 0.3F / static_cast<float>(std::max(ring, 1));
  auto* pixel = static_cast<Uint32*>(picture->pixels);
  for (int y = -reach; y <= reach; ++y) {
    for (int x = -reach; x <= reach; ++x, ++pixel) {
      const float distance = std::sqrt(static_cast<float>(x * x + y * y));
      const float covered = std::clamp(static_cast<float>(reach + 1) - distance, 0.0F, 1.0F);
      const float thick = 1 - thinning * std::max(distance - static_cast<float>(core), 0.0F);
      *pixel = hue | static_cast<Uint32>(std::lround(alphaOf(colour) * thick * covered)) << 24;
    }
  }
  return picture;
}

Colour lightened(Colour colour) {
  const auto lift = [](std::uint8_t channel) {
    return static_cast<std::uint8_t>(std::min(channel + 18, 255));
  };
  return rgba(lift(redOf(colour)), lift(greenOf(colour)), lift(blueOf(colour)), alphaOf(colour));
}

}  // namespace

BlendScope::BlendScope(SDL_Renderer* renderer, SDL_BlendMode mode) : renderer_(renderer) {
  SDL_GetRenderDrawBlendMode(renderer, &before_);
  SDL_SetRenderDrawBlendMode(renderer, mode);
}

BlendScope::~BlendScope() {
  SDL_SetRenderDrawBlendMode(renderer_, before_);
}

void fillRect(SDL_Renderer* renderer, const SDL_Rect& rect, Colour colour) {
  if (SDL_RectEmpty(&rect)) return;
  // The same to the eye, and much less work without a graphics chip.
  std::optional<BlendScope> plain;
  if (alphaOf(colour) == 255) plain.emplace(renderer, SDL_BLENDMODE_NONE);
  setDrawColour(renderer, colour);
  SDL_RenderFillRect(renderer, &rect);
}

void outlineRect(SDL_Renderer* renderer, const SDL_Rect& rect, Colour colour) {
  if (SDL_RectEmpty(&rect)) return;
  setDrawColour(renderer, colour);
  SDL_RenderDrawRect(renderer, &rect);
}

void drawDisc(SDL_Renderer* renderer, int centreX, int centreY, int radius, int ring, Colour colour,
              Colour rim) {
  if (renderer == nullptr || radius <= 0) return;
  Disc().draw(renderer, {centreX, centreY}, radius, ring, colour, 1);
  const BlendScope blend(renderer);
  if (alphaOf(rim) != 0) drawRim(renderer, centreX, centreY, radius, rim);
}

void Disc::draw(SDL_Renderer* renderer, SDL_Point centre, int radius, int ring, Colour colour,
                double strength) {
  if (renderer == nullptr || radius <= 0) return;
  if (!picture_ || radius != radius_ || ring != ring_ || colour != colour_) {
    const SurfacePtr picture = discPicture(radius, ring, colour);
    picture_.reset(SDL_CreateTextureFromSurface(renderer, picture.get()));
    radius_ = radius;
    ring_ = ring;
    colour_ = colour;
  }
  SDL_Rect place{};
  if (SDL_QueryTexture(picture_.get(), nullptr, nullptr, &place.w, &place.h) != 0) return;
  place.x = centre.x - place.w / 2;
  place.y = centre.y - place.h / 2;
  SDL_SetTextureBlendMode(picture_.get(), SDL_BLENDMODE_BLEND);
  SDL_SetTextureAlphaMod(picture_.get(), alphaOf(scaleAlpha(theme::white, strength)));
  SDL_RenderCopy(renderer, picture_.get(), nullptr, &place);
}

void drawCornerMark(SDL_Renderer* renderer, const SDL_Rect& poster, double strength) {
  const int leg = std::min(poster.w, poster.h) / 4;
  if (renderer == nullptr || leg <= 0) return;
  const BlendScope blend(renderer);
  const SDL_FRect corner{static_cast<float>(poster.x + poster.w - leg), static_cast<float>(poster.y),
                         static_cast<float>(leg), static_cast<float>(leg)};
  fillConvex(
      renderer,
      {{corner.x, corner.y}, {corner.x + corner.w, corner.y}, {corner.x + corner.w, corner.y + corner.h}},
      scaleAlpha(rgba(0, 200, 0, 200), strength));
  const int left = poster.x + poster.w - leg;
  const int right = poster.x + poster.w - 1;
  const std::array<SDL_Point, 4> outline{
      {{left, poster.y}, {right, poster.y}, {right, poster.y + leg - 1}, {left, poster.y}}};
  setFadedDrawColour(strength, renderer, rgba(0, 120, 0));
  SDL_RenderDrawLines(renderer, outline.data(), static_cast<int>(outline.size()));
}

void fillPanel(SDL_Renderer* renderer, const SDL_Rect& rect) {
  fillRect(renderer, rect, theme::panelFill);
}

void framePanel(SDL_Renderer* renderer, const SDL_Rect& rect, bool focused) {
  if (focused) outlineRect(renderer, rect, theme::panelFrame);
}

void drawPanel(SDL_Renderer* renderer, const SDL_Rect& rect, bool focused) {
  fillPanel(renderer, rect);
  framePanel(renderer, rect, focused);
}

SDL_Rect caretRect(const SDL_Rect& box, int x, int height) {
  const int tall = std::max(height, 18);
  const int rightmost = std::max(box.x + 6, box.x + box.w - 8);
  return {std::clamp(x, box.x + 6, rightmost), box.y + (box.h - tall) / 2, 2, tall};
}

bool caretShows(Uint64 ticks) {
  return ticks / 600 % 2 == 0;
}

void drawCaret(SDL_Renderer* renderer, const SDL_Rect& box, int x, int height, bool active) {
  if (active && caretShows(SDL_GetTicks64())) fillRect(renderer, caretRect(box, x, height), theme::caret);
}

void drawToggle(const ToggleStyle& style, SDL_Renderer* renderer, const SDL_Rect& rect, bool on,
                bool focused) {
  if (renderer == nullptr || SDL_RectEmpty(&rect)) return;
  const BlendScope blend(renderer);
  const Colour base = on ? style.on : style.off;
  const SDL_FRect pill{static_cast<float>(rect.x), static_cast<float>(rect.y), static_cast<float>(rect.w),
                       static_cast<float>(rect.h)};
  fillConvex(renderer, pillOutline(pill), focused ? lightened(base) : base);
  const float end = pill.h / 2;
  const SDL_FPoint knob{on ? pill.x + pill.w - end : pill.x + end, pill.y + end};
  const float radius = static_cast<float>(std::max(rect.h / 2 - 3, 1));
  fillConvex(renderer, pillOutline(squareAround(knob, radius)), style.knob);
}

}  // namespace tavek

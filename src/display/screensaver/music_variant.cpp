#include "display/screensaver/music_variant.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "display/toolkit/colour.h"
#include "display/toolkit/fade.h"
#include "display/toolkit/fonts.h"
#include "display/toolkit/text.h"
#include "display/toolkit/texture.h"

namespace tavek {
namespace {

constexpr int lineGap = 8;

}  // namespace

SDL_Rect driftingBackdrop(SDL_Point window, SDL_Point size, double seconds) {
  const double cover =
      std::max(static_cast<double>(window.x) / size.x, static_cast<double>(window.y) / size.y);
  const double scale = cover * (1.05 + 0.02 * std::sin(0.25 * seconds));
  const int width = static_cast<int>(size.x * scale);
  const int height = static_cast<int>(size.y * scale);
  return {static_cast<int>((window.x - width) / 2 + 20 * std::sin(0.1 * seconds)),
          static_cast<int>((window.y - height) / 2 + 16 * std::cos(0.13 * seconds)), width, height};
}

MusicTextSizes musicTextSizes(SDL_Point window) {
  return {.margin = window.x < 560 ? 40 : std::min(window.x / 14, 120),
          .title = std::clamp(window.y / 18, 22, 54),
          .other = std::clamp(window.y / 28, 16, 36)};
}

std::array<SDL_Point, 3> placeMusicText(SDL_Point window, const std::array<SDL_Point, 3>& sizes) {
  const int margin = musicTextSizes(window).margin;
  int height = -lineGap;
  for (const SDL_Point& size : sizes) height += size.y > 0 ? size.y + lineGap : 0;
  std::array<SDL_Point, 3> places;
  int y = std::max(window.y - margin - height, margin);
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    places[i] = {margin, y};
    y += sizes[i].y > 0 ? sizes[i].y + lineGap : 0;
  }
  return places;
}

void MusicVariant::draw(const FrameContext& frame, const MusicArt& art, double strength) {
  const SDL_Point window{frame.width, frame.height};
  const Uint8 alpha = fadedAlpha(strength);
  if (art.backdrop != nullptr && art.size.x > 0 && art.size.y > 0) {
    const double seconds = static_cast<double>(frame.nowMs) / 1000;
    copyTexture(frame.renderer, art.backdrop, driftingBackdrop(window, art.size, seconds));
  }
  const MusicTextSizes text = musicTextSizes(window);
  const int room = std::max(window.x - 2 * text.margin, 1);
  std::array<std::string, 3> lines;
  std::array<SDL_Point, 3> sizes;
  const auto fontOf = [&](std::size_t line) { return regularFont(line == 0 ? text.title : text.other); };
  for (std::size_t i = 0; i < lines.size(); ++i) {
    lines[i] = fitText(fontOf(i), art.lines[i], room);
    sizes[i] = textSize(fontOf(i), lines[i]);
  }
  const auto places = placeMusicText(window, sizes);
  const Colour shadow = withAlpha(theme::black, static_cast<Uint8>(0.7 * alpha));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const auto [x, y] = places[i];
    drawText(frame.renderer, fontOf(i), lines[i], x + 2, y + 2, shadow);
    drawText(frame.renderer, fontOf(i), lines[i], x, y, withAlpha(theme::white, alpha));
  }
  drawAlbumArt(frame, art, alpha);
}

void MusicVariant::drawAlbumArt(const FrameContext& frame, const MusicArt& art, Uint8 alpha) {
  if (art.albumArt.empty()) return albumArt_.drop();
  albumArt_.want({.path = art.albumArt}, {std::max(frame.width / 5, 1), std::max(frame.height / 5, 1)},
                 Fit::Inside);
  albumArt_.take(frame.renderer);
  SDL_Texture* texture = albumArt_.texture();
  if (texture == nullptr) return;
  const int margin = musicTextSizes({frame.width, frame.height}).margin;
  const auto [width, height] = albumArt_.size();
  SDL_SetTextureBlendMode(texture, SDL_BLENDMODE_BLEND);
  SDL_SetTextureAlphaMod(texture, alpha);
  copyTexture(frame.renderer, texture,
              {frame.width - margin - width, frame.height - margin - height, width, height});
  SDL_SetTextureAlphaMod(texture, 255);
}

}  // namespace tavek

#pragma once

#include <cstdint>

#include <SDL.h>

namespace tavek {

/// 0xAABBGGRR, which is SDL_Color read as one little-endian word.
using Colour = std::uint32_t;

constexpr Colour rgba(std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::uint8_t alpha = 255) {
  return static_cast<Colour>(alpha) << 24 | static_cast<Colour>(blue) << 16 |
         static_cast<Colour>(green) << 8 | red;
}

constexpr std::uint8_t redOf(Colour colour) {
  return static_cast<std::uint8_t>(colour);
}
constexpr std::uint8_t greenOf(Colour colour) {
  return static_cast<std::uint8_t>(colour >> 8);
}
constexpr std::uint8_t blueOf(Colour colour) {
  return static_cast<std::uint8_t>(colour >> 16);
}
constexpr std::uint8_t alphaOf(Colour colour) {
  return static_cast<std::uint8_t>(colour >> 24);
}

constexpr Colour withAlpha(Colour colour, std::uint8_t alpha) {
  return (colour & 0x00FFFFFFU) | static_cast<Colour>(alpha) << 24;
}

constexpr SDL_Color toSdl(Colour colour) {
  return {redOf(colour), greenOf(colour), blueOf(colour), alphaOf(colour)};
}

/// The colours that all screens share.
namespace theme {
inline constexpr Colour black = rgba(0, 0, 0);
inline constexpr Colour white = rgba(255, 255, 255);
inline constexpr Colour accent = rgba(255, 128, 0);
inline constexpr Colour panelFill = black;
inline constexpr Colour panelFrame = accent;
inline constexpr Colour toggleOn = rgba(0, 128, 0);
inline constexpr Colour toggleOff = rgba(60, 60, 60);
inline constexpr Colour toggleKnob = white;
inline constexpr Colour caret = rgba(0, 255, 0);
}  // namespace theme

/// The colour with its alpha times `factor`, rounded and clamped; from 0.999 on the colour as it is.
Colour scaleAlpha(Colour colour, double factor);

void setDrawColour(SDL_Renderer* renderer, Colour colour);
/// setDrawColour with scaleAlpha's rule.
void setFadedDrawColour(double factor, SDL_Renderer* renderer, Colour colour);

}  // namespace tavek

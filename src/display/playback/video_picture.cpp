#include "display/playback/video_picture.h"

#include <algorithm>
#include <iostream>

#include "display/playback/picture_place.h"
#include "display/toolkit/texture.h"

namespace tavek {
namespace {

constexpr Uint64 pictureFadeMs = 500;

/// 0 before the start, 1 at the end and after it.
double progress(const PictureFade& fade, Uint64 nowMs) {
  if (nowMs < fade.startMs) return 0.0;
  return std::min(static_cast<double>(nowMs - fade.startMs) / static_cast<double>(pictureFadeMs), 1.0);
}

SDL_YUV_CONVERSION_MODE conversionModeOf(PictureColours colours) {
  switch (colours) {
    case PictureColours::Bt601:
      return SDL_YUV_CONVERSION_BT601;
    case PictureColours::Bt601Full:
      return SDL_YUV_CONVERSION_JPEG;
    case PictureColours::Bt709:
      return SDL_YUV_CONVERSION_BT709;
  }
  return SDL_YUV_CONVERSION_BT601;
}

}  // namespace

double PictureFade::fadeIn(Uint64 nowMs) {
  if (!active) return 1.0;
  const double strength = progress(*this, nowMs);
  if (strength >= 1.0) active = false;
  return strength;
}

double PictureFade::fadeOut(Uint64 nowMs) {
  if (!active) return 1.0;
  const double strength = 1.0 - progress(*this, nowMs);
  if (strength <= 0.0) active = false;
  return strength;
}

bool VideoPicture::create(SDL_Renderer* renderer, int width, int height) {
  texture_.reset();
  texture_.reset(
      SDL_CreateTexture(renderer, SDL_PIXELFORMAT_IYUV, SDL_TEXTUREACCESS_STREAMING, width, height));
  width_ = width;
  height_ = height;
  serial_ = 0;
  // Asking the scale mode of none would hide the reason of the failure.
  return texture_ && SDL_GetTextureScaleMode(texture_.get(), &scaleMode_) == 0;
}

bool VideoPicture::upload(SDL_Renderer* renderer, const PictureView& picture) {
  const bool fits = texture_ && width_ == picture.width && height_ == picture.height;
  if (!fits && !create(renderer, picture.width, picture.height)) {
    std::cerr << "SDL_CreateTexture error: " << SDL_GetError() << std::endl;
    return false;
  }
  if (fits && picture.serial != 0 && picture.serial == serial_) return true;
  // SDL reads the mode when it converts, in software at the upload, else at the drawing.
  SDL_SetYUVConversionMode(conversionModeOf(picture.colours));
  const auto& [y, u, v] = picture.planes;
  const auto& [yPitch, uPitch, vPitch] = picture.pitches;
  if (SDL_UpdateYUVTexture(texture_.get(), nullptr, y, yPitch, u, uPitch, v, vPitch) != 0) {
    std::cerr << "SDL_UpdateYUVTexture error: " << SDL_GetError() << std::endl;
    return false;
  }
  serial_ = picture.serial;
  return true;
}

void VideoPicture::draw(const FrameContext& frame, const PictureView& picture) {
  const double strength = fadeIn.fadeIn(frame.nowMs) * fadeOut.fadeOut(frame.nowMs);
  const SDL_Point window{frame.width, frame.height};
  if (strength >= 0.999) return copy(frame.renderer, picture, window);
  // Over black a darker picture is the same as a thinner one, and half the work without a graphics chip.
  const auto level = static_cast<Uint8>(255 * strength);
  SDL_SetTextureColorMod(texture_.get(), level, level, level);
  copy(frame.renderer, picture, window);
  SDL_SetTextureColorMod(texture_.get(), 255, 255, 255);
}

void VideoPicture::copy(SDL_Renderer* renderer, const PictureView& picture, SDL_Point window) {
  const auto [rect, angle] =
      placePicture(orientation_, window, {picture.width, picture.height}, picture.sampleAspect);
  SDL_SetTextureScaleMode(texture_.get(),
                          scaleModeFor({picture.width, picture.height}, {rect.w, rect.h}, scaleMode_));
  if (angle == 0) {
    // The software renderer turns by way of two more copies, even by nothing.
    SDL_RenderCopy(renderer, texture_.get(), nullptr, &rect);
  } else {
    // The picture is opaque, so blending changes nothing; without it the software renderer turns a mask too.
    SDL_SetTextureBlendMode(texture_.get(), SDL_BLENDMODE_BLEND);
    SDL_RenderCopyEx(renderer, texture_.get(), nullptr, &rect, angle, nullptr, SDL_FLIP_NONE);
  }
}

}  // namespace tavek

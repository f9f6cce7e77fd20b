#pragma once

#include <SDL.h>

/// Where the words about a slide lie. All in pixels; a text without a size is not there.
namespace tavek {

/// Sizes of the regular face, by the window's height.
struct CaptionFonts {
  int year;
  int title;
  int overview;
  int badge;
  int tag;
};
CaptionFonts captionFonts(int height);
/// Kept free at all edges.
int captionMargin(int width);
int overviewWidth(int width);
int overviewLineLimit(int height, int lineHeight);
/// The room for a logo.
SDL_Point logoArea(SDL_Point window);

/// "4K", "FHD", "HD", or "" for less.
const char* resolutionBadge(SDL_Point size);

/// What there is to place.
struct CaptionSizes {
  SDL_Point window{};
  SDL_Point year{};
  SDL_Point badge{};
  SDL_Point title{};
  SDL_Point logo{};
  SDL_Point tag{};
  int lines = 0;  ///< of the overview
  int lineHeight = 0;
};
struct CaptionPlaces {
  SDL_Point year{};
  SDL_Point badge{};
  SDL_Point title{};
  SDL_Rect logo{};
  SDL_Point overview{};
  SDL_Rect tagBox{};
  SDL_Point tag{};
};
CaptionPlaces placeCaption(const CaptionSizes& sizes);

}  // namespace tavek

#include "display/playback/picture_place.h"

#include <algorithm>
#include <utility>

namespace tavek {
namespace {

struct Size {
  double w = 0;
  double h = 0;
};

enum class Fit { Straight, Crossed, Portrait };

struct Rule {
  Fit fit = Fit::Straight;
  int angle = 0;
};

Rule autoRule(SDL_Point window, SDL_Point frame) {
  const bool tall = window.y > window.x;
  const bool landscape = frame.x >= frame.y;
  if (tall) return landscape ? Rule{Fit::Portrait, 90} : Rule{Fit::Straight, 0};
  return landscape ? Rule{Fit::Straight, 0} : Rule{Fit::Crossed, 90};
}

Rule ruleOf(Orientation orientation, SDL_Point window, SDL_Point frame) {
  switch (orientation) {
    case Orientation::OrientationAuto:
      return autoRule(window, frame);
    case Orientation::OrientationLandscape:
    case Orientation::Orientation0:
      return {Fit::Straight, 0};
    case Orientation::OrientationPortrait:
    case Orientation::Orientation90:
      return {Fit::Portrait, 90};
    case Orientation::Orientation180:
      return {Fit::Straight, 180};
    case Orientation::Orientation270:
      return {Fit::Portrait, 270};
  }
  return {};
}

SDL_Rect centred(SDL_Point window, Size size) {
  const int w = static_cast<int>(size.w);
  const int h = static_cast<int>(size.h);
  return {(window.x - w) / 2, (window.y - h) / 2, w, h};
}

SDL_Rect fitted(SDL_Point window, Size size) {
  const double scale = std::min(window.x / size.w, window.y / size.h);
  return centred(window, {scale * size.w, scale * size.h});
}

/// The area that the turned picture covers.
SDL_Rect areaOf(Fit fit, SDL_Point window, SDL_Point frame, double wide) {
  const Size turned{static_cast<double>(frame.y), wide};
  if (fit == Fit::Straight) return fitted(window, {wide, static_cast<double>(frame.y)});
  if (fit == Fit::Crossed || window.y <= window.x || frame.x <= frame.y) return fitted(window, turned);
  const Size byHeight{static_cast<double>(static_cast<int>(window.y / turned.h * turned.w)),
                      static_cast<double>(window.y)};
  if (byHeight.w <= window.x) return centred(window, byHeight);
  return centred(window, {static_cast<double>(window.x), window.x / turned.w * turned.h});
}

}  // namespace

PicturePlace placePicture(Orientation orientation, SDL_Point window, SDL_Point frame, double sampleAspect) {
  if (window.x <= 0 || window.y <= 0) return {};
  const Rule rule = ruleOf(orientation, window, frame);
  SDL_Rect area = areaOf(rule.fit, window, frame, frame.x * sampleAspect);
  if (rule.angle % 180 != 0) {
    // The renderer takes the rectangle of the unturned picture, so the sides go back.
    const SDL_Point middle2{2 * area.x + area.w, 2 * area.y + area.h};
    std::swap(area.w, area.h);
    area.x = (middle2.x - area.w) / 2;
    area.y = (middle2.y - area.h) / 2;
  }
  return {area, rule.angle};
}

}  // namespace tavek

#include "media/tone_curve.h"

#include <algorithm>
#include <cmath>

namespace tavek {
namespace {

constexpr double screenNits = 100;
constexpr double whiteNits = 1000;
/// The curve and the wide primaries make colour differences small. This brings those of moderate colours
/// back, by a least-squares fit over BT.709 colours that went through BT.2020 and PQ.
constexpr double chromaGain = 2.5;

/// Light in cd/m2 of a signal of 0 to 1: the EOTF of ST 2084.
double lightOf(double signal) {
  constexpr double m1 = 2610.0 / 16384;
  constexpr double m2 = 2523.0 / 4096 * 128;
  constexpr double c1 = 3424.0 / 4096;
  constexpr double c2 = 2413.0 / 4096 * 32;
  constexpr double c3 = 2392.0 / 4096 * 32;
  const double root = std::pow(signal, 1 / m2);
  return 10'000 * std::pow(std::max(root - c1, 0.0) / (c2 - c3 * root), 1 / m1);
}

/// The signal of 0 to 1 for a screen.
double tonedDown(double signal) {
  const double light = lightOf(signal) / screenNits;
  const double white = whiteNits / screenNits;
  const double shown = light * (1 + light / (white * white)) / (1 + light);
  return std::pow(std::min(shown, 1.0), 1 / 2.4);
}

std::uint8_t sampleOf(double value) {
  return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0, 255.0)));
}

ToneCurve makeToneCurve() {
  ToneCurve curve{};
  for (std::size_t level = 0; level < ToneCurve::levels; ++level) {
    const double sample = static_cast<double>(level) / 4;
    curve.luma[level] = sampleOf(16 + 219 * tonedDown(std::clamp((sample - 16) / 219, 0.0, 1.0)));
    curve.chroma[level] = sampleOf(std::clamp(128 + chromaGain * (sample - 128), 16.0, 240.0));
  }
  return curve;
}

}  // namespace

const ToneCurve& toneCurve() {
  static const ToneCurve curve = makeToneCurve();
  return curve;
}

}  // namespace tavek

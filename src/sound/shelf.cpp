#include "sound/shelf.h"

#include <cmath>
#include <cstddef>
#include <numbers>

#include "sound/sample.h"

namespace tavek {
namespace {

constexpr double bassHz = 120.0;
constexpr double trebleHz = 5000.0;
constexpr double slope = 0.707;
constexpr double flatDb = 0.01;

enum class ShelfKind { Low, High };

bool isFlat(double gainDb) {
  return std::abs(gainDb) < flatDb;
}

ShelfCoefficients coefficientsOf(ShelfKind kind, double frequency, double gainDb, int rate) {
  const double a = std::pow(10.0, gainDb / 40.0);
  const double w0 = 2.0 * std::numbers::pi * frequency / (rate < 1 ? 48000 : rate);
  const double alpha = std::sin(w0) / 2.0 * std::sqrt((a + 1.0 / a) * (1.0 / slope - 1.0) + 2.0);
  const double beta = 2.0 * std::sqrt(a) * alpha;
  // The high shelf is the low one with the cosine's sign turned, and the odd coefficients' with it.
  const double sign = kind == ShelfKind::Low ? 1.0 : -1.0;
  const double cosine = sign * std::cos(w0);

  ShelfCoefficients c;
  c.b0 = a * ((a + 1.0) - (a - 1.0) * cosine + beta);
  c.b1 = sign * 2.0 * a * ((a - 1.0) - (a + 1.0) * cosine);
  c.b2 = a * ((a + 1.0) - (a - 1.0) * cosine - beta);
  c.a1 = sign * -2.0 * ((a - 1.0) + (a + 1.0) * cosine);
  c.a2 = (a + 1.0) + (a - 1.0) * cosine - beta;
  const double a0 = (a + 1.0) + (a - 1.0) * cosine + beta;
  if (std::abs(a0) >= 1e-12) {
    for (double* part : {&c.b0, &c.b1, &c.b2, &c.a1, &c.a2}) *part /= a0;
  }
  return c;
}

Shelf design(ShelfKind kind, double frequency, double gainDb, int rate, int channels) {
  const auto atRest = std::vector<double>(static_cast<std::size_t>(channels), 0.0);
  const auto coefficients =
      isFlat(gainDb) ? ShelfCoefficients{} : coefficientsOf(kind, frequency, gainDb, rate);
  return {gainDb, coefficients, atRest, atRest};
}

}  // namespace

Shelf designBassShelf(double gainDb, int rate, int channels) {
  return design(ShelfKind::Low, bassHz, gainDb, rate, channels);
}

Shelf designTrebleShelf(double gainDb, int rate, int channels) {
  return design(ShelfKind::High, trebleHz, gainDb, rate, channels);
}

void applyShelf(Shelf& shelf, std::span<std::int16_t> samples, int channels) {
  if (samples.empty() || channels < 1 || isFlat(shelf.gainDb)) return;
  const auto count = static_cast<std::size_t>(channels);
  if (shelf.z1.size() != count || shelf.z2.size() != count) {
    shelf.z1.assign(count, 0.0);
    shelf.z2.assign(count, 0.0);
  }
  const ShelfCoefficients& c = shelf.coefficients;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    double& z1 = shelf.z1[i % count];
    double& z2 = shelf.z2[i % count];
    // Direct form II, transposed.
    const double x = samples[i];
    const double y = c.b0 * x + z1;
    z1 = z2 + c.b1 * x - c.a1 * y;
    z2 = c.b2 * x - c.a2 * y;
    samples[i] = toSample(y);
  }
}

}  // namespace tavek

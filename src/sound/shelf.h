#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// The two tone controls: the low and the high shelf of the Audio EQ Cookbook (R. Bristow-Johnson), with a
/// shelf slope of 0.707.
namespace tavek {

/// Normalised by a0; the initial values pass everything through.
struct ShelfCoefficients {
  double b0 = 1.0;
  double b1 = 0.0;
  double b2 = 0.0;
  double a1 = 0.0;
  double a2 = 0.0;
};

struct Shelf {
  double gainDb = 0.0;
  ShelfCoefficients coefficients;
  std::vector<double> z1, z2;  ///< filter state, one entry per channel
};

/// A low shelf at 120 Hz with its state at rest; a rate below 1 counts as 48000.
Shelf designBassShelf(double gainDb, int rate, int channels);
/// A high shelf at 5000 Hz.
Shelf designTrebleShelf(double gainDb, int rate, int channels);

/// Filters one block of interleaved samples in place and keeps the state for the next. A flat shelf costs
/// nothing.
void applyShelf(Shelf& shelf, std::span<std::int16_t> samples, int channels);

}  // namespace tavek

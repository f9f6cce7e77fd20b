#include "sound/volume.h"

#include <algorithm>
#include <cmath>

#include "sound/sample.h"

namespace tavek {
namespace {

constexpr double peakTarget = 32760.0;
constexpr double minDb = -60.0;
constexpr double maxDb = 12.0;
constexpr double silentDb = -59.99;
constexpr double minLimiter = 0.01;

double linearOf(double db) {
  return std::pow(10.0, db / 20.0);
}

double dbThatFits(double peak) {
  return std::clamp(20.0 * std::log10(peakTarget / peak), minDb, maxDb);
}

double gainOf(double db, double factor) {
  return db > silentDb ? factor : 0.0;
}

void setVolume(Volume& volume, double db) {
  volume.volumeDb = db;
  volume.volumeLinear = linearOf(db);
}

double peakOf(std::span<const std::int16_t> samples) {
  int peak = 0;
  for (const int sample : samples) peak = std::max(peak, std::abs(sample));
  return peak;
}

}  // namespace

Volume firstVolume(std::optional<double> storedDb) {
  if (!storedDb || std::isnan(*storedDb)) return {};
  const double db = std::clamp(*storedDb, minDb, maxDb);
  const double linear = linearOf(db);
  return {.gain = gainOf(db, linear), .volumeDb = db, .volumeLinear = linear, .volumeUnset = false};
}

void applyVolume(Volume& volume, std::span<std::int16_t> samples) {
  const double peak = peakOf(samples);
  if (volume.volumeUnset && peak > 0) {
    setVolume(volume, dbThatFits(peak));
    volume.volumeUnset = false;
  }
  volume.lastPeak = peak;
  volume.limiter = peak > 0 ? std::clamp(peakTarget / peak / volume.volumeLinear, minLimiter, 1.0) : 1.0;
  volume.gain = gainOf(volume.volumeDb, volume.volumeLinear * volume.limiter);

  const double gain = volume.gain;
  if (gain == 1.0) return;
  for (std::int16_t& sample : samples) sample = toSample(sample * gain);
}

void adjustVolume(Volume& volume, double deltaDb) {
  setVolume(volume, std::max(std::min(volume.volumeDb + deltaDb, volumeCeilingDb(volume)), minDb));
  volume.gain = gainOf(volume.volumeDb, volume.volumeLinear * volume.limiter);
}

double volumeCeilingDb(const Volume& volume) {
  const double peak = volume.lastPeak;
  return peak > 0 ? dbThatFits(peak) : defaultVolumeDb;
}

}  // namespace tavek

#pragma once

namespace tavek {

/// How far the volume bar is filled: where the volume stands between -60 dB and its ceiling, 0 to 100.
int volumePercent(double volumeDb, double ceilingDb);

}  // namespace tavek

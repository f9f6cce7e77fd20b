#pragma once

#include <cstdint>
#include <string>

namespace tavek {

/// A position or length in microseconds as m:ss, from one hour on as h:mm:ss; negative counts as 0.
std::string formatTime(std::int64_t us);

}  // namespace tavek

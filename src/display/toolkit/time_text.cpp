#include "display/toolkit/time_text.h"

#include <algorithm>

namespace tavek {
namespace {

std::string twoDigits(std::int64_t number) {
  return (number < 10 ? "0" : "") + std::to_string(number);
}

}  // namespace

std::string formatTime(std::int64_t us) {
  const std::int64_t seconds = std::max<std::int64_t>(us, 0) / 1'000'000;
  const std::int64_t minutes = seconds / 60;
  const std::string rest = ":" + twoDigits(seconds % 60);
  if (minutes < 60) return std::to_string(minutes) + rest;
  return std::to_string(minutes / 60) + ":" + twoDigits(minutes % 60) + rest;
}

}  // namespace tavek

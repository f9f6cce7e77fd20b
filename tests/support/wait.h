#pragma once

#include <chrono>
#include <thread>

namespace tavek::test {

/// Polls until the question is answered with true; false when the seconds are over.
bool waitUntil(double seconds, const auto& question) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
  while (!question()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace tavek::test

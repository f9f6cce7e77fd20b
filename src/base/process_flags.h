#pragma once

#include <atomic>

namespace tavek {

/// A word that many threads poll without a lock; a stale value only costs one more round.
/// Lock-free, so a signal handler may write it.
class Flag {
 public:
  constexpr Flag() = default;
  operator bool() const { return value_.load(std::memory_order_relaxed); }
  Flag& operator=(bool value) {
    value_.store(value, std::memory_order_relaxed);
    return *this;
  }

 private:
  static_assert(std::atomic<bool>::is_always_lock_free);
  std::atomic<bool> value_{false};
};

/// Set by the signal handler only.
inline Flag stopSignalled;
/// Ends every loop of the program; set by the signal handler, the window's close event and the quit action.
inline Flag quitRequested;

/// Console switches: set while the command line is read, before any thread starts, and constant after that.
inline bool debugEnabled = false;
inline bool movieDetailEnabled = false;
inline bool focusModeEnabled = false;
inline bool showKeycodesEnabled = false;
inline bool bluetoothDebugEnabled = false;
inline bool tmdbConsoleEnabled = false;
inline bool fanartConsoleEnabled = false;

}  // namespace tavek

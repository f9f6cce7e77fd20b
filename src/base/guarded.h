#pragma once

#include <mutex>
#include <utility>

namespace tavek {

/// A value that several threads share: it can be reached only while its lock is held.
template <typename T>
class Guarded {
 public:
  template <typename... Arguments>
  explicit Guarded(Arguments&&... arguments) : value_(std::forward<Arguments>(arguments)...) {}
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  /// The value, locked for as long as this lives: a loop over a temporary one would let go before its first
  /// step. A thread may hold it once.
  template <typename Value>
  class Held {
   public:
    Held(std::mutex& mutex, Value& value) : lock_(mutex), value_(value) {}
    Value* operator->() const { return &value_; }
    Value& operator*() const { return value_; }
    /// For waiting on a condition; locked again when the wait returns.
    std::unique_lock<std::mutex>& lock() { return lock_; }

   private:
    std::unique_lock<std::mutex> lock_;
    Value& value_;
  };

  Held<T> hold() { return {mutex_, value_}; }
  Held<const T> hold() const { return {mutex_, value_}; }

 private:
  mutable std::mutex mutex_;
  T value_;
};

}  // namespace tavek

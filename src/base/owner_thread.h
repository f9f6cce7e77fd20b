#pragma once

#include <cassert>
#include <thread>

namespace tavek {

/// The thread that has made an object, where all other use of it has to come from there too.
class OwnerThread {
 public:
  /// Ends a build with assertions that meets another thread.
  void check() const { assert(std::this_thread::get_id() == id_); }

 private:
  [[maybe_unused]] const std::thread::id id_ = std::this_thread::get_id();
};

}  // namespace tavek

#pragma once

#include <unistd.h>
#include <utility>

namespace tavek {

/// The owner of a file descriptor; -1 is none.
class Descriptor {
 public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~Descriptor() { close(); }
  Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  bool isOpen() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  /// False if the system lost bytes that it had taken before.
  bool close() { return isOpen() && ::close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

}  // namespace tavek

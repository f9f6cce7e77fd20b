#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tavek {

/// Samples on their way, in a room of fixed size: no push allocates.
class SampleRing {
 public:
  explicit SampleRing(std::size_t capacity = 0) : samples_(capacity) {}

  std::size_t size() const { return size_; }
  std::size_t capacity() const { return samples_.size(); }
  void clear() { size_ = 0; }

  /// What does not fit any more is left out.
  void pushBack(std::span<const std::int16_t> samples) {
    const std::size_t count = std::min(samples.size(), capacity() - size_);
    for (std::size_t i = 0; i < count; ++i) samples_[index(size_ + i)] = samples[i];
    size_ += count;
  }
  /// The newest of `other`, ahead of all that is here; the oldest that do not fit are left out.
  void prependNewest(const SampleRing& other, std::size_t count) {
    count = std::min({count, other.size_, capacity() - size_});
    first_ = capacity() == 0 ? 0 : (first_ + capacity() - count) % capacity();
    size_ += count;
    for (std::size_t i = 0; i < count; ++i) samples_[index(i)] = other.at(other.size_ - count + i);
  }
  /// Makes room by forgetting the oldest.
  void pushBackForgetting(std::span<const std::int16_t> samples) {
    if (samples.size() > capacity()) samples = samples.last(capacity());
    const std::size_t needed = size_ + samples.size();
    if (needed > capacity()) popFront(needed - capacity());
    pushBack(samples);
  }
  void popFront(std::size_t count) {
    count = std::min(count, size_);
    first_ = index(count);
    size_ -= count;
  }
  /// The oldest ones, as many as the target takes.
  std::size_t copyFront(std::span<std::int16_t> target) const {
    const std::size_t count = std::min(target.size(), size_);
    for (std::size_t i = 0; i < count; ++i) target[i] = at(i);
    return count;
  }
  std::int16_t at(std::size_t place) const { return samples_[index(place)]; }

 private:
  std::size_t index(std::size_t place) const {
    return samples_.empty() ? 0 : (first_ + place) % samples_.size();
  }

  std::vector<std::int16_t> samples_;
  std::size_t first_ = 0;
  std::size_t size_ = 0;
};

}  // namespace tavek

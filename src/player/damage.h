#pragma once

#include <cstdint>
#include <optional>

namespace tavek {

/// How much damage a stream may have: single bad packets are skipped. Throws ffmpeg::Error once it is enough.
class Damage {
 public:
  void goodFrame();
  /// A packet at this place of the stream, in microseconds, made no sense to the decoder.
  void badPacket(std::int64_t positionUs);
  /// The next packet comes from another place.
  void seek() { badSince_.reset(); }

 private:
  std::optional<std::int64_t> badSince_;  ///< the first bad packet after the last good frame
};

}  // namespace tavek

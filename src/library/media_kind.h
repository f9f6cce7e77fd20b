#pragma once

#include <cstdint>

namespace tavek {

/// How a room is presented.
enum class MediaKind : std::int32_t {
  Movies = 0,  ///< posters of films
  Series = 1,  ///< series, then seasons, then episodes
  Videos = 2,  ///< home videos
  Music = 3,   ///< albums and tracks
};

}  // namespace tavek

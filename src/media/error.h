#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace tavek::ffmpeg {

/// What the media wrappers throw; its text is shown to the viewer.
class Error : public std::runtime_error {
 public:
  /// "FFmpeg: " and the message.
  explicit Error(std::string_view message);
  /// "FFmpeg: ", FFmpeg's own text for the number, and where known the failed expression and its place.
  explicit Error(int number, std::string_view expression = {}, std::string_view file = {}, int line = 0);
};

/// For FFmpeg results of which only the sign tells about success.
void throwIfNegative(int result);

}  // namespace tavek::ffmpeg

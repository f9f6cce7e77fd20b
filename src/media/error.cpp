#include "media/error.h"

#include <array>

extern "C" {
#include <libavutil/error.h>
}

namespace tavek::ffmpeg {
namespace {

std::string describe(int number, std::string_view expression, std::string_view file, int line) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> reason{};
  av_strerror(number, reason.data(), reason.size());
  std::string text = reason.data();
  if (!expression.empty()) text.append(" [expr: ").append(expression).append("]");
  if (!file.empty()) {
    text.append(" @ ").append(file);
    if (line > 0) text.append(":").append(std::to_string(line));
  }
  return text;
}

}  // namespace

Error::Error(std::string_view message) : std::runtime_error("FFmpeg: " + std::string(message)) {}

Error::Error(int number, std::string_view expression, std::string_view file, int line)
    : Error(describe(number, expression, file, line)) {}

void throwIfNegative(int result) {
  if (result < 0) throw Error(result);
}

}  // namespace tavek::ffmpeg

#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

namespace tavek {

/// One audio stream of a file, as far as the choice among them goes.
struct AudioStream {
  int channels = 0;
  std::optional<std::string> language;  ///< as tagged in the file
};

/// The position of the stream to play: more channels win, the preferred language decides between equals, and
/// the earlier stream otherwise. Languages agree when one begins with the other, so "en" is "eng".
std::optional<std::size_t> chooseAudioStream(std::span<const AudioStream> streams,
                                             const std::optional<std::string>& preferredLanguage);

}  // namespace tavek

#include "media/stream_choice.h"

#include <algorithm>

#include "base/text.h"

namespace tavek {
namespace {

bool languagesAgree(const std::string& one, const std::string& other) {
  const std::size_t shared = std::min(one.size(), other.size());
  return toLower(one.substr(0, shared)) == toLower(other.substr(0, shared));
}

}  // namespace

std::optional<std::size_t> chooseAudioStream(std::span<const AudioStream> streams,
                                             const std::optional<std::string>& preferredLanguage) {
  std::optional<std::size_t> best;
  int bestChannels = -1;
  bool bestMatches = false;
  for (std::size_t i = 0; i < streams.size(); ++i) {
    const auto& [tagged, language] = streams[i];
    const int channels = std::max(tagged, 0);
    const bool matches = preferredLanguage && language && languagesAgree(*preferredLanguage, *language);
    if (channels > bestChannels || (channels == bestChannels && matches && !bestMatches)) {
      best = i;
      bestChannels = channels;
      bestMatches = matches;
    }
  }
  return best;
}

}  // namespace tavek

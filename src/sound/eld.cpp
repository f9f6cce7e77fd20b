#include "sound/eld.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>
#include <string_view>

#include "base/text.h"

namespace tavek {
namespace {

constexpr int pinsPerDevice = 4;

std::optional<int> firstNumber(std::string_view text) {
  const auto* digits = std::ranges::find_if(text, isAsciiDigit);
  if (digits == text.end()) return std::nullopt;
  const long value = std::strtol(std::string(digits, text.end()).c_str(), nullptr, 10);
  return static_cast<int>(std::min<long>(value, std::numeric_limits<int>::max()));
}

}  // namespace

std::optional<int> parseEld(std::istream& file) {
  constexpr std::string_view channelsMark = "_channels";
  bool monitorPresent = false;
  int maxChannels = 0;
  for (std::string raw; std::getline(file, raw);) {
    const std::string line = trim(raw);
    if (line.starts_with("monitor_present")) {
      monitorPresent = firstNumber(line).value_or(0) != 0;
    } else if (line.starts_with("sad")) {
      const auto mark = line.find(channelsMark);
      if (mark == std::string::npos) continue;
      const auto channels = firstNumber(std::string_view(line).substr(mark + channelsMark.size()));
      maxChannels = std::max(maxChannels, channels.value_or(0));
    }
  }
  return monitorPresent && maxChannels > 0 ? std::optional(maxChannels) : std::nullopt;
}

SinkChannels readSinkChannels(const std::filesystem::path& procFolder, int card, int device) {
  SinkChannels sink;
  if (card < 0 || device < 0) return sink;
  const auto cardFolder = procFolder / ("card" + std::to_string(card));
  for (int pin = 0; pin < pinsPerDevice && !sink.channels; ++pin) {
    std::ifstream file(cardFolder / ("eld#" + std::to_string(device) + "." + std::to_string(pin)));
    if (!file) continue;
    sink.eldFound = true;
    sink.channels = parseEld(file);
  }
  return sink;
}

}  // namespace tavek

#pragma once

#include <filesystem>
#include <istream>
#include <optional>

/// What the HDMI sink says of itself, in the ELD files that ALSA keeps for each card.
namespace tavek {

struct SinkChannels {
  std::optional<int> channels;  ///< the most that any audio descriptor of a present monitor offers
  bool eldFound = false;        ///< at least one ELD file could be opened, whatever it holds
};

/// The channel count of one ELD file; empty without a monitor or without descriptors.
std::optional<int> parseEld(std::istream& file);

/// Reads the files of one playback device, up to the first that shows a monitor with channels.
SinkChannels readSinkChannels(const std::filesystem::path& procFolder, int card, int device);

}  // namespace tavek

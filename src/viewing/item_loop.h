#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "base/clock.h"
#include "sound/pcm_device.h"
#include "state/stored.h"

namespace tavek {

class Display;
class HueLights;

/// What every item of a run shares.
struct PlayContext {
  Display& display;
  const Stored& stored;
  Clock& clock;
  std::optional<std::string> language;
  PcmDeviceFactory soundDevice;
  HueLights& lights;
  /// Told of each item before it is opened, and with an empty path once none is open any more.
  std::function<void(const std::filesystem::path&)> itemInUse = {};
};

/// Plays the item and whatever follows it by itself, until one ends without a successor. Never holds two
/// items: the audio device of one is free before the next one opens. Throws a std::exception for an item that
/// cannot be opened or fails on the way.
void playFromPath(const PlayContext& context, std::string path);

}  // namespace tavek

#include "state/device_files.h"

#include <string>
#include <utility>

#include "base/file_write.h"
#include "state/device_text.h"
#include "state/json_read.h"
#include "state/json_write.h"
#include "state/wpa_config.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

/// They hold keys.
constexpr mode_t mode = 0600;

fs::path fileIn(const fs::path& home, const char* name) {
  return home.empty() ? fs::path() : home / name;
}

}  // namespace

template <typename Settings>
Settings DeviceFile<Settings>::look(bool& absent) {
  std::optional<FileStamp> known;
  unsigned version = 0;
  {
    const auto memory = memory_.hold();
    if (file_.empty() || memory->version != memory->saved) return memory->settings;
    known = memory->stamp;
    version = memory->version;
  }
  const SmallFile read = readSmallFile(file_, known);
  const auto memory = memory_.hold();
  if (memory->version != version) return memory->settings;
  if (read.found == FileFound::Missing) {
    memory->stamp.reset();
    if (!std::exchange(memory->absent, true)) absent = true;
  } else if (read.found == FileFound::Read) {
    readDevice(read.text, memory->settings);
    memory->stamp = read.stamp;
    memory->absent = false;
  }
  return memory->settings;
}

template <typename Settings>
void DeviceFile<Settings>::set(const Settings& settings) {
  const auto memory = memory_.hold();
  memory->settings = settings;
  if (!file_.empty()) ++memory->version;
}

template <typename Settings>
bool DeviceFile<Settings>::save() {
  const auto [settings, stamp, absent, version, saved] = Memory(*memory_.hold());
  if (!absent && version == saved) return true;
  const SmallFile old = readSmallFile(file_);
  if (old.found == FileFound::Missing) ensureJsonFile(file_, mode);
  if (version == saved) return true;
  if (old.found == FileFound::Unreadable) return false;
  const std::string text = deviceText(settings, old.text);
  const bool other = text != old.text;
  if (other && !replace(old.text, text)) return false;
  const SmallFile written = readSmallFile(file_);
  const auto memory = memory_.hold();
  memory->saved = version;
  if (other && written.text == text) memory->stamp = written.stamp;
  return true;
}

template <typename Settings>
bool DeviceFile<Settings>::replace(const std::string& old, const std::string& text) const {
  removeLeftovers(file_);
  if (isDamaged(old) && !replaceFile(file_.string() + ".damaged", old, mode)) return false;
  return replaceFile(file_, text, mode);
}

DeviceFiles::DeviceFiles(const fs::path& home)
    : kept_(!home.empty()),
      hue_(fileIn(home, ".hue.json")),
      bluetooth_(fileIn(home, ".bluetooth.json")),
      network_(fileIn(home, ".network.json")) {}

void DeviceFiles::set(const HueSettings& settings) {
  hue_.set(settings);
}

void DeviceFiles::set(const BluetoothSettings& settings) {
  bluetooth_.set(settings);
  if (kept_) untold_.hold()->bluetooth = settings;
}

void DeviceFiles::set(const NetworkSettings& settings) {
  network_.set(settings);
  if (kept_) untold_.hold()->network = settings;
}

bool DeviceFiles::save() {
  const bool hueSaved = hue_.save();
  const bool bluetoothSaved = bluetooth_.save();
  const bool networkSaved = network_.save();
  tellSystem();
  return hueSaved && bluetoothSaved && networkSaved;
}

/// Once for what was set: whether the system can be told at all is a matter of the machine.
void DeviceFiles::tellSystem() {
  const Untold untold = std::exchange(*untold_.hold(), {});
  if (untold.network) {
    writeWpaConfig(untold.network->ssid.value_or(""), untold.network->password.value_or(""));
    radios_.block("wifi", untold.network->rfkillBlocked);
  }
  if (untold.bluetooth) radios_.block("bluetooth", untold.bluetooth->rfkillBlocked);
}

template class DeviceFile<HueSettings>;
template class DeviceFile<BluetoothSettings>;
template class DeviceFile<NetworkSettings>;

}  // namespace tavek

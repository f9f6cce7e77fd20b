#pragma once

#include <optional>
#include <string>

/// What the box needs to reach its lights, its Bluetooth adapter and its network; each record is a small file
/// in the home folder.
namespace tavek {

struct HueSettings {
  std::optional<std::string> bridge = {}, user = {}, group = {};
  std::optional<std::string> playScene = {}, pauseScene = {}, playAlert = {}, pauseAlert = {};
  bool enabled = true;
  bool operator==(const HueSettings&) const = default;
};

struct BluetoothSettings {
  std::optional<std::string> adapter = {}, name = {}, pin = {};
  std::optional<std::string> autoPrimary = {}, autoSecondary = {}, audioProfile = {};
  bool enabled = true;
  bool discoverable = false;
  bool rfkillBlocked = false;
  bool operator==(const BluetoothSettings&) const = default;
};

/// An address as it is typed.
struct StaticAddress {
  std::optional<std::string> address = {}, netmask = {}, gateway = {}, dns1 = {}, dns2 = {};
  bool operator==(const StaticAddress&) const = default;
};

struct NetworkSettings {
  std::optional<std::string> interface = {};
  bool dhcp = true;
  bool rfkillBlocked = false;
  StaticAddress wired = {}, wifi = {};
  std::optional<std::string> ssid = {}, password = {};
  bool operator==(const NetworkSettings&) const = default;
};

}  // namespace tavek

#include "state/stored_devices.h"

#include "state/device_files.h"

namespace tavek {

HueSettings StoredDevices::hueSettings() {
  bool absent = false;
  HueSettings settings = files_.hue(absent);
  if (absent) saves_.request(Save::Always);
  return settings;
}

BluetoothSettings StoredDevices::bluetoothSettings() {
  bool absent = false;
  BluetoothSettings settings = files_.bluetooth(absent);
  if (absent) saves_.request(Save::Always);
  return settings;
}

NetworkSettings StoredDevices::networkSettings() {
  bool absent = false;
  NetworkSettings settings = files_.network(absent);
  if (absent) saves_.request(Save::Always);
  return settings;
}

void StoredDevices::setHueSettings(const HueSettings& settings) {
  files_.set(settings);
  saves_.request(Save::Always);
}

void StoredDevices::setBluetoothSettings(const BluetoothSettings& settings) {
  files_.set(settings);
  saves_.request(Save::Always);
}

void StoredDevices::setNetworkSettings(const NetworkSettings& settings) {
  files_.set(settings);
  saves_.request(Save::Always);
}

}  // namespace tavek

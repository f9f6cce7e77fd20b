#pragma once

#include "state/device_settings.h"
#include "state/save_thread.h"

namespace tavek {

class DeviceFiles;

/// The records of the devices. A file that was changed from outside is taken up by the next read; what is set
/// is in memory at once, and written behind that. Every thread may call every operation.
class StoredDevices {
 public:
  StoredDevices(DeviceFiles& files, SaveThread& saves) : files_(files), saves_(saves) {}

  HueSettings hueSettings();
  void setHueSettings(const HueSettings& settings);
  BluetoothSettings bluetoothSettings();
  void setBluetoothSettings(const BluetoothSettings& settings);
  NetworkSettings networkSettings();
  void setNetworkSettings(const NetworkSettings& settings);

 private:
  DeviceFiles& files_;
  SaveThread& saves_;
};

}  // namespace tavek

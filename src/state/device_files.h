#pragma once

#include <filesystem>
#include <optional>

#include "base/guarded.h"
#include "state/device_settings.h"
#include "state/radio_switch.h"
#include "state/small_file.h"

namespace tavek {

/// One record, and the file with it, which nobody but the user may read. Files are read and written without
/// the lock. One that cannot be read is never replaced.
template <typename Settings>
class DeviceFile {
 public:
  /// Without a file the record is only in memory.
  explicit DeviceFile(std::filesystem::path file) : file_(std::move(file)) {}

  /// Reads the file if it is another one than before. `absent` is set once when there is none: a save makes
  /// it.
  Settings look(bool& absent);
  void set(const Settings& settings);
  /// False where it has to be tried again. On the thread that saves.
  bool save();

 private:
  struct Memory {
    Settings settings;
    std::optional<FileStamp> stamp;
    bool absent = false;
    unsigned version = 0;  ///< of the record; counts what was set
    unsigned saved = 0;    ///< the version that the file has
  };

  bool replace(const std::string& old, const std::string& text) const;

  const std::filesystem::path file_;
  Guarded<Memory> memory_;
};

/// The records of the devices, and what the system has to be told of them: the wireless network's name and
/// key, and which radios are to be silent.
class DeviceFiles {
 public:
  /// Without a home folder nothing is kept and nobody is told.
  explicit DeviceFiles(const std::filesystem::path& home);

  HueSettings hue(bool& absent) { return hue_.look(absent); }
  BluetoothSettings bluetooth(bool& absent) { return bluetooth_.look(absent); }
  NetworkSettings network(bool& absent) { return network_.look(absent); }
  void set(const HueSettings& settings);
  void set(const BluetoothSettings& settings);
  void set(const NetworkSettings& settings);
  /// On the thread that saves. False where something has to be tried again.
  bool save();

 private:
  /// What was set and not told yet.
  struct Untold {
    std::optional<BluetoothSettings> bluetooth;
    std::optional<NetworkSettings> network;
  };
  void tellSystem();

  const bool kept_;
  DeviceFile<HueSettings> hue_;
  DeviceFile<BluetoothSettings> bluetooth_;
  DeviceFile<NetworkSettings> network_;
  Guarded<Untold> untold_;
  RadioSwitch radios_;  ///< the saving thread's
};

}  // namespace tavek

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "state/state_memory.h"

namespace tavek {

/// What is remembered of the program itself, in the shared state file.
class StoredSettings {
 public:
  explicit StoredSettings(StateMemory& memory) : memory_(memory) {}

  std::optional<std::int64_t> tmdbScanEpoch();
  std::optional<std::string> tmdbScanLabel();
  std::optional<std::int64_t> fanartScanEpoch();
  std::optional<std::int32_t> soundMode();
  std::optional<std::string> settingsTab();
  std::vector<std::string> wifiHistory();
  /// In seconds since 1970; an empty label leaves the old one.
  void setTmdbScan(std::int64_t epoch, const std::string& label);
  void setFanartScan(std::int64_t epoch);
  void setSoundMode(std::int32_t mode);
  /// An empty text clears it.
  void setSettingsTab(const std::string& text);
  void pushWifiHistory(const std::string& ssid);

  /// Puts off saves while something moves on the screen, but for those of what plays and what was watched.
  void holdWrites(bool held);

 private:
  StateMemory& memory_;
};

}  // namespace tavek

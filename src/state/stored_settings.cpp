#include "state/stored_settings.h"

#include <utility>

namespace tavek {
namespace {

template <typename Value>
Value valueOf(StateMemory& memory, Value StoredState::*member) {
  return memory.look([&](const StoredState& state) { return state.*member; });
}

template <typename Value>
void setValue(StateMemory& memory, Value StoredState::*member, Value value) {
  memory.change(Save::AtRest, [&](StoredState& state) {
    state.*member = std::move(value);
    return true;
  });
}

}  // namespace

std::optional<std::int64_t> StoredSettings::tmdbScanEpoch() {
  return valueOf(memory_, &StoredState::tmdbScanEpoch);
}

std::optional<std::string> StoredSettings::tmdbScanLabel() {
  return valueOf(memory_, &StoredState::tmdbScanLabel);
}

std::optional<std::int64_t> StoredSettings::fanartScanEpoch() {
  return valueOf(memory_, &StoredState::fanartScanEpoch);
}

std::optional<std::int32_t> StoredSettings::soundMode() {
  return valueOf(memory_, &StoredState::soundMode);
}

std::optional<std::string> StoredSettings::settingsTab() {
  return valueOf(memory_, &StoredState::settingsTab);
}

std::vector<std::string> StoredSettings::wifiHistory() {
  return valueOf(memory_, &StoredState::wifiHistory);
}

void StoredSettings::setTmdbScan(std::int64_t epoch, const std::string& label) {
  memory_.change(Save::AtRest, [&](StoredState& state) {
    state.tmdbScanEpoch = epoch;
    if (!label.empty()) state.tmdbScanLabel = label;
    return true;
  });
}

void StoredSettings::setFanartScan(std::int64_t epoch) {
  setValue(memory_, &StoredState::fanartScanEpoch, std::optional(epoch));
}

void StoredSettings::setSoundMode(std::int32_t mode) {
  setValue(memory_, &StoredState::soundMode, std::optional(mode));
}

void StoredSettings::setSettingsTab(const std::string& text) {
  setValue(memory_, &StoredState::settingsTab, text.empty() ? std::nullopt : std::optional(text));
}

void StoredSettings::pushWifiHistory(const std::string& ssid) {
  if (ssid.empty()) return;
  memory_.change(Save::AtRest, [&](StoredState& state) {
    auto& history = state.wifiHistory;
    std::erase(history, ssid);
    history.insert(history.begin(), ssid);
    if (history.size() > wifiHistoryLimit) history.resize(wifiHistoryLimit);
    return true;
  });
}

void StoredSettings::holdWrites(bool held) {
  memory_.holdWrites(held);
}

}  // namespace tavek

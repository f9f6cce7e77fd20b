#include "state/state_store.h"

#include <algorithm>
#include <fstream>
#include <system_error>
#include <utility>

#include "base/file_write.h"
#include "base/paths.h"
#include "library/media_paths.h"
#include "state/json_read.h"
#include "state/json_write.h"

namespace tavek {
namespace {

constexpr std::size_t wifiHistoryLimit = 16;

/// A file is never overwritten by a store that has none of these.
bool isWorthSaving(const StoredState& state) {
  return state.soundMode || state.tmdbScanEpoch || state.settingsTab || state.fanartScanEpoch ||
         !state.activeUser.value_or("").empty();
}

bool hasScanNotes(const std::string& media) {
  const std::string room = normalizeRoomName(roomNameOfMedia(media));
  return room != "tv" && room != "video";
}

template <typename Values>
auto valueOf(const Values& values, const std::string& media) -> std::optional<typename Values::mapped_type> {
  const auto entry = values.find(media);
  return entry != values.end() ? std::optional(entry->second) : std::nullopt;
}

void setNote(std::unordered_map<std::string, std::string>& notes, const std::string& media,
             const std::string& text) {
  if (media.empty()) return;
  if (text.empty() || !hasScanNotes(media)) {
    notes.erase(media);
  } else {
    notes[media] = text;
  }
}

}  // namespace

StateStore& StateStore::instance() {
  static StateStore store(stateFile());
  return store;
}

StateStore::StateStore(std::filesystem::path file) : file_(std::move(file)) {}

// --- The file ---

std::unique_lock<std::mutex> StateStore::enter() {
  std::unique_lock lock(mutex_);
  if (!loaded_) load();
  return lock;
}

std::string StateStore::readStateFile() const {
  std::ifstream stream(file_, std::ios::binary);
  return readWholeFile(stream);
}

void StateStore::load() {
  ensureJsonFile(file_);
  bool changed = false;
  state_ = readStoredState(readStateFile(), changed);
  if (addRooms(listRoots())) changed = true;
  loaded_ = true;
  if (changed) write(false);
}

bool StateStore::addRooms(const std::vector<std::filesystem::path>& folders) {
  bool added = false;
  for (const std::filesystem::path& folder : folders) {
    const std::string room = normalizeRoomName(roomNameOfRoot(folder));
    if (isMainRoom(room)) continue;
    for (const std::string& name : state_.userNames) {
      if (!name.empty() && state_.profiles[name].otherRooms.try_emplace(room).second) added = true;
    }
  }
  return added;
}

void StateStore::write(bool force) {
  if (writesHeld_ && !force) {
    writePending_ = true;
    return;
  }
  std::error_code ignored;
  if (!isWorthSaving(state_) && std::filesystem::exists(file_, ignored)) return;
  writePending_ = !replaceFile(file_, stateText(state_));
}

void StateStore::holdWrites(bool held) {
  const auto lock = enter();
  const bool released = writesHeld_ && !held;
  writesHeld_ = held;
  if (released && writePending_) write(false);
}

// --- Scans and settings ---

std::optional<std::int64_t> StateStore::tmdbScanEpoch() {
  const auto lock = enter();
  return state_.tmdbScanEpoch;
}

std::optional<std::string> StateStore::tmdbScanLabel() {
  const auto lock = enter();
  return state_.tmdbScanLabel;
}

std::optional<std::int64_t> StateStore::fanartScanEpoch() {
  const auto lock = enter();
  return state_.fanartScanEpoch;
}

std::optional<std::int32_t> StateStore::soundMode() {
  const auto lock = enter();
  return state_.soundMode;
}

std::optional<std::string> StateStore::settingsTab() {
  const auto lock = enter();
  return state_.settingsTab;
}

void StateStore::setTmdbScan(std::int64_t epoch, const std::string& label) {
  const auto lock = enter();
  state_.tmdbScanEpoch = epoch;
  if (!label.empty()) state_.tmdbScanLabel = label;
  write(false);
}

void StateStore::setFanartScan(std::int64_t epoch) {
  const auto lock = enter();
  state_.fanartScanEpoch = epoch;
  write(false);
}

void StateStore::setSoundMode(std::int32_t mode) {
  const auto lock = enter();
  state_.soundMode = mode;
  write(false);
}

void StateStore::setSettingsTab(const std::string& text) {
  const auto lock = enter();
  state_.settingsTab = text.empty() ? std::nullopt : std::optional(text);
  write(false);
}

std::vector<std::string> StateStore::wifiHistory() {
  const auto lock = enter();
  return state_.wifiHistory;
}

void StateStore::pushWifiHistory(const std::string& ssid) {
  if (ssid.empty()) return;
  const auto lock = enter();
  auto& history = state_.wifiHistory;
  std::erase(history, ssid);
  history.insert(history.begin(), ssid);
  if (history.size() > wifiHistoryLimit) history.resize(wifiHistoryLimit);
  write(false);
}

// --- Kept for this run only ---

std::optional<std::string> StateStore::scanNoteA(const std::string& media) {
  const auto lock = enter();
  return hasScanNotes(media) ? valueOf(scanNotesA_, media) : std::nullopt;
}

std::optional<std::string> StateStore::scanNoteB(const std::string& media) {
  const auto lock = enter();
  return hasScanNotes(media) ? valueOf(scanNotesB_, media) : std::nullopt;
}

void StateStore::setScanNoteA(const std::string& media, const std::string& text) {
  const auto lock = enter();
  setNote(scanNotesA_, media, text);
}

void StateStore::setScanNoteB(const std::string& media, const std::string& text) {
  const auto lock = enter();
  setNote(scanNotesB_, media, text);
}

std::optional<double> StateStore::audioParamA(const std::string& media) {
  const auto lock = enter();
  return valueOf(audioParamA_, media);
}

std::optional<double> StateStore::audioParamB(const std::string& media) {
  const auto lock = enter();
  return valueOf(audioParamB_, media);
}

void StateStore::setAudioParamA(const std::string& media, double value) {
  const auto lock = enter();
  audioParamA_[media] = value;
}

void StateStore::setAudioParamB(const std::string& media, double value) {
  const auto lock = enter();
  audioParamB_[media] = value;
}

std::optional<FrameSize> StateStore::frameSize(const std::string& media) {
  const auto lock = enter();
  return valueOf(frameSizes_, media);
}

void StateStore::setFrameSize(const std::string& media, std::int32_t width, std::int32_t height) {
  if (width < 1 || height < 1) return;
  const auto lock = enter();
  frameSizes_[media] = {width, height};
}

}  // namespace tavek

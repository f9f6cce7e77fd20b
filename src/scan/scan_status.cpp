#include "scan/scan_status.h"

#include <atomic>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>

#include "base/guarded.h"

namespace tavek {
namespace {

struct ScanStatus {
  std::string statusText;
  std::unordered_map<std::string, std::int32_t> activities;
  std::unordered_set<std::string> changedFolders;
};

// The screen asks in each frame, and hardly ever finds a difference: it needs no lock for that.
std::atomic<std::uint32_t> changeCounter{0};
std::atomic<std::uint32_t> changeSeen{0};

Guarded<ScanStatus>& scanStatus() {
  static Guarded<ScanStatus> status;
  return status;
}

}  // namespace

void setScanStatus(std::string_view text) {
  scanStatus().hold()->statusText = text;
}

void clearScanStatusIf(std::string_view text) {
  const auto status = scanStatus().hold();
  if (status->statusText == text) status->statusText.clear();
}

void beginScanActivity(std::string_view label) {
  if (!label.empty()) ++scanStatus().hold()->activities[std::string(label)];
}

void endScanActivity(std::string_view label) {
  const auto status = scanStatus().hold();
  const auto found = status->activities.find(std::string(label));
  if (found != status->activities.end() && --found->second <= 0) status->activities.erase(found);
}

std::string currentScanStatus() {
  const auto status = scanStatus().hold();
  if (!status->statusText.empty()) return status->statusText;
  if (status->activities.empty()) return "";
  return status->activities.size() == 1 ? status->activities.begin()->first : "Scanning media...";
}

void noteLibraryChanged() {
  changeCounter.fetch_add(1, std::memory_order_relaxed);
}

void noteFolderChanged(const std::filesystem::path& path) {
  const std::string normal = path.lexically_normal().string();
  // First the folder: who sees the counter raised must find it.
  if (!normal.empty()) scanStatus().hold()->changedFolders.insert(normal);
  changeCounter.fetch_add(1, std::memory_order_relaxed);
}

std::optional<std::filesystem::path> takeChangedFolder() {
  std::uint32_t seen = changeSeen.load(std::memory_order_relaxed);
  do {
    if (seen == changeCounter.load(std::memory_order_relaxed)) return {};
  } while (!changeSeen.compare_exchange_weak(seen, seen + 1, std::memory_order_relaxed));
  const auto status = scanStatus().hold();
  const auto first = status->changedFolders.begin();
  if (first == status->changedFolders.end()) return std::filesystem::path();
  return std::filesystem::path(std::move(status->changedFolders.extract(first).value()));
}

}  // namespace tavek

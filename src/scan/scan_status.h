#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// What the scans tell the screen: one status line, and the folders that have changed. There is one of it in
/// the process; any thread may call, and nothing here waits for a disk or the net.
namespace tavek {

void setScanStatus(std::string_view text);
/// Leaves a message alone that somebody else has set since.
void clearScanStatusIf(std::string_view text);

/// A scan of this label runs. The same label may run more than once; an empty one counts for nothing.
void beginScanActivity(std::string_view label);
void endScanActivity(std::string_view label);

/// An activity for as long as this lives.
class ScanActivity {
 public:
  explicit ScanActivity(std::string label) : label_(std::move(label)) { beginScanActivity(label_); }
  ~ScanActivity() { endScanActivity(label_); }
  ScanActivity(const ScanActivity&) = delete;
  ScanActivity& operator=(const ScanActivity&) = delete;

 private:
  std::string label_;
};

/// A message for as long as this lives, unless somebody else sets another one.
class ScanMessage {
 public:
  explicit ScanMessage(std::string text) : text_(std::move(text)) { setScanStatus(text_); }
  ~ScanMessage() { clearScanStatusIf(text_); }
  ScanMessage(const ScanMessage&) = delete;
  ScanMessage& operator=(const ScanMessage&) = delete;

 private:
  std::string text_;
};

/// What the status line says: the message, else the label of the one activity; empty for none.
std::string currentScanStatus();

/// The open folder may need a reload.
void noteLibraryChanged();
/// This folder does.
void noteFolderChanged(const std::filesystem::path& path);
/// The next notification; an empty path means the open folder.
std::optional<std::filesystem::path> takeChangedFolder();

}  // namespace tavek

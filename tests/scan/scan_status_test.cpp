#include "scan/scan_status.h"

#include <gtest/gtest.h>

namespace tavek {
namespace {

TEST(ScanStatus, SaysTheMessageOrWhatRuns) {
  endScanActivity("never begun");
  beginScanActivity("");
  EXPECT_EQ(currentScanStatus(), "");
  beginScanActivity("Scanning films...");
  beginScanActivity("Scanning films...");
  EXPECT_EQ(currentScanStatus(), "Scanning films...") << "twice the same";
  {
    const ScanActivity art("Scanning art...");
    EXPECT_EQ(currentScanStatus(), "Scanning media...");
    setScanStatus("one");
    setScanStatus("two");
    clearScanStatusIf("one");
    EXPECT_EQ(currentScanStatus(), "two") << "a newer message stays";
    clearScanStatusIf("two");
  }
  endScanActivity("Scanning films...");
  EXPECT_EQ(currentScanStatus(), "Scanning films...");
  endScanActivity("Scanning films...");
  EXPECT_EQ(currentScanStatus(), "");
}

TEST(ScanStatus, HandsOutEachChangedFolder) {
  EXPECT_EQ(takeChangedFolder(), std::nullopt);
  noteFolderChanged("/media/tv/../movies");
  noteFolderChanged("/media/movies");
  noteLibraryChanged();
  noteFolderChanged("");
  EXPECT_EQ(takeChangedFolder(), "/media/movies");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(takeChangedFolder(), "") << "the open folder";
  EXPECT_EQ(takeChangedFolder(), std::nullopt);
}

}  // namespace
}  // namespace tavek

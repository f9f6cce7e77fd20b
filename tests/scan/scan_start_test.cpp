#include <sys/stat.h>

#include <gtest/gtest.h>

#include "base/process_flags.h"
#include "scan/credentials.h"
#include "scan/scan_schedule.h"
#include "scan/scan_status.h"
#include "support/table.h"
#include "support/temp_folder.h"

namespace tavek {
namespace {

using test::readText;
using test::writeText;

struct CredentialFiles : testing::Test {
  test::TempFolder temp;
  const fs::path root = temp.path();
  ConfigFolders folders{root / "current", root / "home", root / "program", root / "etc"};
};

TEST_F(CredentialFiles, AreLookedForEverywhereBeforeOneIsMade) {
  const fs::path inOrder[] = {folders.system, folders.program, folders.home, folders.current};
  for (const fs::path& folder : inOrder) {
    writeText(folder / ".tmdb.json", "{}");
    EXPECT_EQ(findConfigFile(".tmdb.json", folders), folder / ".tmdb.json");
  }
  const fs::path stub = folders.home / ".fanart.json";
  EXPECT_EQ(findConfigFile(".fanart.json", folders), stub);
  EXPECT_EQ(readText(stub), "{}\n");
  struct stat status = {};
  ASSERT_EQ(stat(stub.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0600U);
  EXPECT_EQ(findConfigFile(".fanart.json", {}), std::nullopt);
  // Neither a link to nowhere nor what stands there is written to.
  fs::create_symlink(root / "nowhere", folders.home / ".link.json");
  EXPECT_EQ(findConfigFile(".link.json", folders), std::nullopt);
  EXPECT_FALSE(fs::exists(root / "nowhere"));
  writeText(stub, "mine");
  ensureConfigStub(stub);
  EXPECT_EQ(readText(stub), "mine");
}

TEST_F(CredentialFiles, AreReadOnlyIfTheyAreFiles) {
  fs::create_directories(folders.home);
  const fs::path pipe = folders.home / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const fs::path& none : {pipe, folders.home, folders.home / "missing", fs::path("/dev/null")})
    EXPECT_EQ(readConfigText(none), std::nullopt) << none;
  writeText(folders.home / "lines", "{\"Key\"\n:\n\"a\nb\"}");
  EXPECT_EQ(readConfigText(folders.home / "lines"), "{\"Key\":\"ab\"}");
  writeText(folders.home / "long", std::string(100'000, ' ') + R"("Key":"late")");
  EXPECT_EQ(readConfigText(folders.home / "long")->size(), 65536U);
}

TEST_F(CredentialFiles, GiveTheirKeysAndKeepThemOutOfTheLog) {
  writeText(folders.current / ".tmdb.json",
            R"({"Key" : "abc", "ReadAccessToken":"tok", "TvdbKey":"tv", "TvdbPin":"pin"})");
  writeText(folders.system / ".fanart.json", R"({"api_key":"fan", "TVDBKey":"tv2"})");
  tmdbConsoleEnabled = fanartConsoleEnabled = true;
  testing::internal::CaptureStdout();
  const Credentials both = loadCredentials(folders);
  const std::string log = testing::internal::GetCapturedStdout();
  tmdbConsoleEnabled = fanartConsoleEnabled = false;
  EXPECT_EQ(both.tmdbKey + both.tmdbToken + both.fanartKey + both.tvdbKey + both.tvdbPin, "abctokfantv2pin");
  EXPECT_NE(log.find("config loaded from " + (folders.current / ".tmdb.json").string()), std::string::npos);
  EXPECT_NE(log.find("fanart config loaded from " + (folders.system / ".fanart.json").string()),
            std::string::npos);
  for (const char* key : {"\"abc\"", "tok", "tv2", "pin"}) EXPECT_EQ(log.find(key), std::string::npos) << key;

  writeText(folders.current / ".tmdb.json", R"({"FanartKey":"mine"})");
  const Credentials first = loadCredentials(folders);
  EXPECT_EQ(first.fanartKey, "mine");
  EXPECT_EQ(first.tvdbKey, "");
  EXPECT_FALSE(first.hasTmdb());
}

TEST(CredentialKeys, AreReadInTheirOrder) {
  const std::pair<const char*, std::optional<std::string>> values[] = {
      {R"({"Key" : "abc"})", "abc"}, {R"({"Key":""})", {}},
      {R"({"Key":"a)", {}},          {R"({"Key")", {}},
      {R"({"key":"a"})", {}},        {R"({"Key":5,"Other":"x"})", "Other"},
      {R"({"Key":"a\"b"})", "a\\"},  {"{\"Key\":\"a\rb\"}", {}},
      {"{\"Key\":\"a\x7F\"}", {}},
  };
  for (const auto& [text, key] : values) EXPECT_EQ(readConfigString(text, "Key"), key) << text;

  const std::pair<const char*, const char*> rows[] = {
      {R"({"Key":"5","APIKey":"4","ApiKey":"3","client_key":"c","ClientKey":"d"})", "3 c  "},
      {R"({"FanartKey":"8","Key":"5","FanartClientKey":"9","clientKey":"7"})", "5 7  "},
      {R"({"api_key":"1","ApiKey":"3","TvdbKey":"a","tvdb_key":"b","TVDBKey":"c"})", "1  c "},
      {R"({"FanartKey":"8","tvdb_pin":"p","TVDBPin":"q","tvdb_key":"k"})", "8  k q"},
  };
  for (const auto& [text, fanart] : rows) {
    Credentials read;
    readFanartConfig(text, read);
    EXPECT_EQ(read.fanartKey + " " + read.fanartClientKey + " " + read.tvdbKey + " " + read.tvdbPin, fanart);
  }
}

constexpr std::int64_t now = 1'000'000;

TEST(ScanSchedule, ScansARoomOnceADay) {
  const auto before = [](const std::string& seconds) {
    return seconds == "-" ? std::nullopt : std::optional(now - std::stoi(seconds));
  };
  // The last scan: its age, its room, its age in this run; the room that is asked for; what is said.
  for (const auto& [age, label, inRun, room, said] : test::table<5>(R"(
      86399 => movies => - => movies => skipped for movies ;; 86400 => movies => - => movies => scanned
      5 => Movies => - => movies => skipped for Movies ;; 5 => => - => => skipped ;; 5 => - => - => movies => scanned
      -5 => movies => - => movies => scanned ;; - => movies => - => movies => scanned ;; 5 => movies => - => kids => scanned
      5 => kids => 3600 => movies => skipped for movies ;; 5 => kids => 86400 => movies => scanned)")) {
    const TmdbScanRecord record{before(age), label == "-" ? std::nullopt : std::optional(label),
                                before(inRun)};
    const ScanDecision due = tmdbScanDue(now, record, room, false);
    EXPECT_EQ(due.run, said == "scanned") << age << label << inRun;
    EXPECT_EQ(due.line, due.run ? "" : "scan " + said + " (last run under 24h)");
    EXPECT_EQ(tmdbScanDue(now, record, room, true), (ScanDecision{true, "scan forced by --tmdb-scan"}));
  }
  EXPECT_TRUE(tmdbScanDue(0, {0, "movies", {}}, "movies", false).run) << "the clock fails";
}

TEST(ScanSchedule, ScansTheArtOfSeriesAndAtTheStartOnceADay) {
  constexpr std::int64_t yesterday = now - 86400, least = INT64_MIN, most = INT64_MAX;
  const std::tuple<std::int64_t, std::optional<std::int64_t>, bool, bool> rows[] = {
      {now, {}, true, true},        {now, yesterday + 1, false, false},
      {now, yesterday, true, true}, {now, now + 1, true, true},
      {now, now, false, false},     {0, {}, true, true},
      {0, 5, true, false},          {-1, -7, true, false},
      {now, least, true, true},     {now, most, true, true},
      {most, least, true, true}};
  for (const auto& [at, last, request, start] : rows) {
    const ScanDecision due = fanartScanDue(at, last, false);
    EXPECT_EQ(due.run, request) << at;
    EXPECT_EQ(due.line, request ? "" : "scan skipped (last run under 24h)");
    EXPECT_EQ(fanartStartScanDue(at, last).run, start) << at;
    EXPECT_EQ(tmdbStartScanDue(at, last, "kids").line,
              start ? "startup scan: running TMDB before loading kids" : "");
  }
  EXPECT_EQ(fanartScanDue(now, now, true), (ScanDecision{true, "scan forced by --fanart-scan"}));
  EXPECT_EQ(tmdbStartScanDue(now, {}, "").line, "startup scan: running TMDB before loading movies");
}

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

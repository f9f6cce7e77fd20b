#include "state/device_files.h"

#include <sys/stat.h>

#include <gmock/gmock.h>

#include "base/run_tool.h"
#include "state/device_text.h"
#include "state/state_store.h"
#include "state/texts.h"
#include "state/wpa_config.h"
#include "support/temp_folder.h"
#include "support/wait.h"

namespace tavek {
namespace {

using namespace test;
using std::chrono::seconds;
using testing::HasSubstr;

/// The system's settings and tools, before anything can ask for the real ones.
class FakeSystem : public TempFolder {
 public:
  FakeSystem() {
    setenv("TAVEK_ETC", path().c_str(), 1);
    setenv("TAVEK_TOOL_DIR", path().c_str(), 1);
    setRfkill("");
  }
  void setRfkill(const std::string& command) const {
    writeText(path() / "rfkill", "#!/bin/sh\necho \"$@\" >>" + (path() / "log").string() + '\n' + command);
    fs::permissions(path() / "rfkill", fs::perms::owner_all);
  }
  fs::path conf() const { return path() / "wpa_supplicant/wpa_supplicant.conf"; }
};
const FakeSystem fakeSystem;

template <typename Settings>
Settings readAs(const std::string& text) {
  Settings settings;
  readDevice(text, settings);
  return settings;
}

/// With | for a line feed, > for a tab and ' for a quote.
std::string laid(std::string text) {
  for (const auto& [from, to] : {std::pair('|', '\n'), {'>', '\t'}, {'\'', '"'}})
    std::ranges::replace(text, from, to);
  return text;
}

template <typename Settings>
void expectText(const Settings& settings, const std::string& text) {
  EXPECT_EQ(deviceText(settings, ""), laid(text));
  EXPECT_EQ(readAs<Settings>(laid(text)), settings);
  EXPECT_EQ(deviceText(settings, laid(' ' + text)), laid(' ' + text)) << "it says the same";
}

TEST(DeviceText, HasTheLayoutOfEachFileAndIsReadBack) {
  const HueSettings hue{
      .bridge = "b", .user = "u\"\\\n\\", .group = "g", .pauseScene = "p", .enabled = false};
  expectText(hue,
             R"({|>'Hue': {|>>'Bridge': 'b',|>>'User': 'u\'\\\n\\',|>>'Group': 'g',|>>'Enabled': 'false',)"
             "|>>'Pause': {|>>>'Scene': 'p'|>>}|>}|}|");
  EXPECT_EQ(deviceText(HueSettings{.bridge = "b", .user = ""}, "x"), "x") << "no pairing";
  expectText(
      BluetoothSettings{.name = "n", .pin = "1", .discoverable = true, .rfkillBlocked = true},
      "{|>'Bluetooth': {|>>'Name': 'n',|>>'Enabled': 'true',|>>'Discoverable': 'true',|>>'Rfkill': 'blocked',"
      "|>>'PIN': '1'|>}|}|");
  NetworkSettings network{.interface = "e", .ssid = "s", .password = "p"};
  network.wifi.dns2 = "9";
  const std::string start = "{|>'Network': {|>>'Interface': 'e',|>>'DHCP': 'true',|>>'Rfkill': 'unblocked',|";
  expectText(
      network,
      start +
          ">>'WiFi': {|>>>'Static': {|>>>>'DNS2': '9'|>>>},|>>>'SSID': 's',|>>>'Password': 'p'|>>}|>}|}|");
  network.wired.address = "1";
  EXPECT_THAT(deviceText(network, ""), HasSubstr(laid(start + ">>'Static': {|>>>'Address': '1'|>>},|")))
      << "kept while DHCP is on";
}

TEST(DeviceText, ReadsWhatAPersonMayHaveWritten) {
  // The lights; Bluetooth: enabled, discoverable, blocked; network: DHCP, blocked.
  for (const auto& [word, expected] : table(R"(
      null => 110010 ;; "true" => 111111 ;; "TRUE" => 011111 ;; "1" => 111111 ;; "no" => 000000 ;; "FALSE" => 000000
      "yes" => 011010 ;; "off" => 010010 ;; "0" => 000000 ;; "Blocked" => 010111 ;; false => 000000 ;; "" => 010010)")) {
    std::string text;
    for (const char* key : {"Enabled", "Discoverable", "DHCP", "Rfkill"})
      text += std::string(text.empty() ? "" : ",") + '"' + key + "\":" + word;
    const auto hue = readAs<HueSettings>("{\"Hue\":{" + text + "}}");
    const auto bluetooth = readAs<BluetoothSettings>("{\"Bluetooth\":{" + text + "}}");
    const auto network = readAs<NetworkSettings>("{\"Network\":{" + text + "}}");
    std::string found;
    for (const bool flag : {hue.enabled, bluetooth.enabled, bluetooth.discoverable, bluetooth.rfkillBlocked,
                            network.dhcp, network.rfkillBlocked})
      found += flag ? '1' : '0';
    EXPECT_EQ(found, expected) << word;
  }
  HueSettings off{.enabled = false};
  readDevice("{}", off);
  EXPECT_FALSE(off.enabled) << "it stays as it was";
  EXPECT_EQ(readAs<BluetoothSettings>(R"({"Bluetooth":{"Name":"n","PIN":12,"x":)").name, "n") << "cut short";
  EXPECT_EQ(readAs<BluetoothSettings>(R"({"Bluetooth":{"PIN":12}})").pin, "12");
  EXPECT_EQ(readAs<NetworkSettings>(R"({"Network":{"Static":{"DNS1":"8"}}})").wifi.dns1, "8");

  const std::string old = R"({"x":1,"Network":{"x":{"a":[1]},"Interface":"old","Static":{"x":2},"WiFi":{"x":3,
                             "Static":{"x":4},"SSID":"a"}}})";
  std::string text = deviceText(NetworkSettings{.ssid = "s"}, old);
  std::erase_if(text, isAsciiSpace);
  EXPECT_EQ(text, R"({"Network":{"DHCP":"true","Rfkill":"unblocked","Static":{"x":2},)"
                  R"("WiFi":{"Static":{"x":4},"SSID":"s","x":3},"x":{"a":[1]}},"x":1})");
}

struct DeviceFilesTest : testing::Test {
  fs::path in(const char* name) const { return home.path() / name; }
  static mode_t modeOf(const fs::path& file) {
    struct stat status {};
    return stat(file.c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
  }
  TempFolder home;
  StateStore store{in("library/persist.json"), home.path()};
  StoredDevices& devices = store.parts().devices;
};

TEST_F(DeviceFilesTest, KeepsWhatIsSetAndTakesUpWhatIsWrittenByHand) {
  EXPECT_EQ(devices.hueSettings(), HueSettings());
  EXPECT_TRUE(store.flush(seconds(5)));
  EXPECT_EQ(readText(in(".hue.json")), "{}\n");
  EXPECT_EQ(modeOf(in(".hue.json")), 0600U);
  EXPECT_FALSE(fs::exists(in(".network.json"))) << "nobody asked";

  writeText(in(".hue.json"), R"({"Hue":{"Bridge":"hand","User":"u"}})");
  EXPECT_EQ(devices.hueSettings().bridge, "hand");
  const HueSettings set{.bridge = "set", .user = "v"};
  devices.setHueSettings(set);
  fs::permissions(in(".hue.json"), fs::perms::all);
  writeText(in(".hue.json"), R"({"Hue":{"Bridge":"other","Later":[1]}})");
  EXPECT_EQ(devices.hueSettings(), set) << "what is not saved yet is the newest";
  EXPECT_TRUE(store.flush(seconds(5)));
  EXPECT_THAT(readText(in(".hue.json")), HasSubstr("\"Later\": [1]"));
  EXPECT_EQ(modeOf(in(".hue.json")), 0600U);
  StateStore next{in("library/persist.json"), home.path()};
  EXPECT_EQ(next.parts().devices.hueSettings(), set);

  fs::create_hard_link(in(".hue.json"), in("same"));
  devices.setHueSettings(set);
  EXPECT_TRUE(store.flush(seconds(5)));
  EXPECT_TRUE(fs::equivalent(in(".hue.json"), in("same"))) << "nothing has changed";

  StateStore homeless{in("library/persist.json"), ""};
  homeless.parts().devices.setHueSettings(set);
  EXPECT_EQ(homeless.parts().devices.hueSettings(), set);
  EXPECT_TRUE(homeless.flush(seconds(5)));
}

TEST_F(DeviceFilesTest, LosesNothingToAFullDiskOrADamagedFile) {
  const std::string old = R"({"Hue":{"Bridge":"b","User":"u", "Later":)";
  writeText(in(".hue.json"), old);
  EXPECT_EQ(devices.hueSettings().bridge, "b");
  EXPECT_TRUE(store.flush(seconds(5)));
  onFullDisk(10, [&] {
    devices.setHueSettings({.bridge = "new", .user = "u"});
    EXPECT_FALSE(store.flush(seconds(5)));
  });
  EXPECT_EQ(readText(in(".hue.json")), old);
  EXPECT_EQ(devices.hueSettings().bridge, "new");
  for (const char* bridge : {"new", "newer"}) {
    devices.setHueSettings({.bridge = bridge, .user = "u"});
    EXPECT_TRUE(store.flush(seconds(5)));
    EXPECT_EQ(readAs<HueSettings>(readText(in(".hue.json"))).bridge, bridge);
    EXPECT_EQ(readText(in(".hue.json.damaged")), old) << "only before the first save";
    EXPECT_EQ(modeOf(in(".hue.json.damaged")), 0600U);
  }
  fs::remove(in(".hue.json"));
  fs::create_symlink("away/nowhere", in(".hue.json"));
  devices.setHueSettings({.bridge = "lost", .user = "u"});
  EXPECT_FALSE(store.flush(seconds(5))) << "it may be on a disk that comes later";
  EXPECT_TRUE(fs::is_symlink(in(".hue.json")) && !fs::exists(in("away")));
}

TEST_F(DeviceFilesTest, TellsTheSystemAndWaitsForNoTool) {
  fakeSystem.setRfkill("exec sleep 5");
  devices.setNetworkSettings({.rfkillBlocked = true, .ssid = "home", .password = "secret12"});
  devices.setBluetoothSettings({});
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(store.flush(seconds(5)));
  EXPECT_LT(std::chrono::steady_clock::now() - start, seconds(1));
  EXPECT_EQ(readText(fakeSystem.conf()), wpaConfig("", "home", "secret12"));
  EXPECT_EQ(modeOf(fakeSystem.conf()), 0600U);
  EXPECT_TRUE(waitUntil(5, [] {
    const std::string log = '\n' + readText(fakeSystem.path() / "log");
    return log.find("\nunblock bluetooth\n") < log.size() && log.find("\nblock wifi\n") < log.size();
  }));
}

const std::string header =
    "ctrl_interface=DIR=/run/wpa_supplicant GROUP=netdev\nupdate_config=1\nfast_reauth=1\n";
const std::string ours = "network={\n\tssid=\"home\"\n\tpsk=\"secret12\"\n\tpriority=10\n}\n";
const std::string other = "network={\n\tssid=\"other\"\n\tbssid=00:11:22:33:44:55\n}\n";

TEST(WpaConfig, ChangesOneNetworkAndLeavesAllElse) {
  const std::string open = "\tssid=686f6d65 # as hex\n\tkey_mgmt=NONE\n}\n";
  const std::string endless = "network={\n\tssid=\"home\"\n";
  const std::pair<std::string, std::string> rows[] = {
      {"", header + '\n' + ours},
      {header + ours, header + ours},
      {"ctrl_interface=/x\nupdate_config=0 # y",
       "fast_reauth=1\nctrl_interface=/x\nupdate_config=0 # y\n\n" + ours},
      {header + "country=DE\n" + other + "# mine\n network={ # x\n" + open + other + "network={\n" + open +
           "#end",
       header + "country=DE\n" + other + "# mine\n" + ours + other + "#end\n"},
      {header + endless + other, header + endless + other + '\n' + ours}};
  for (const auto& [old, expected] : rows) EXPECT_EQ(wpaConfig(old, "home", "secret12"), expected) << old;
  EXPECT_EQ(wpaConfig(header + ours, "home", ""),
            header + "network={\n\tssid=\"home\"\n\tkey_mgmt=NONE\n\tpriority=10\n}\n");
  EXPECT_EQ(wpaConfig(ours, "home", "1234567"), ours) << "too short";
  EXPECT_EQ(wpaConfig(ours, "home", std::string(64, 'a')), ours) << "too long";
  for (const auto& ssid : {std::string(), std::string(33, 'a')}) EXPECT_EQ(wpaConfig(ours, ssid, ""), ours);
}

/// There is no such interface: it ends once it has read the file, and needs no rights for that.
TEST(WpaConfig, IsReadBackByTheServiceAsItWasMeant) {
  const TempFolder folder;
  std::string text = wpaConfig(other, "a#b 'c", "pass#word 1");
  text = wpaConfig(text, "caf\"\u00e9\\", "");
  text = wpaConfig(text, "a b", "x\"y\\zabcd");
  writeText(folder.path() / "conf", text);
  const Flag never;
  const std::string said = runTool({{toolPath("wpa_supplicant", {"/usr/sbin/wpa_supplicant"}), "-i", "none",
                                     "-D", "wired", "-c", (folder.path() / "conf").string(), "-dd", "-K"}},
                                   never)
                               .output;
  for (const char* piece :
       {"id=0 ssid='other'\n", "id=1 ssid='a#b 'c'\n", "id=2 ssid='caf\\\"\\xc3\\xa9\\\\'\n",
        "id=3 ssid='a b'\n", "pass#word 1", "key_mgmt: 0x4\n",
        "PSK - hexdump(len=32): b2 d0 f1 c0 69 af 68 7d cb 04 16 b8 2d 3a 95 22 "
        "c9 3d 06 e6 81 f8 e8 74 8c 03 bf 0b 75 ec 37 d7\n"})
    EXPECT_THAT(said, HasSubstr(piece));
  EXPECT_THAT(said, testing::Not(HasSubstr("Failed to read or parse")));
}

}  // namespace
}  // namespace tavek
